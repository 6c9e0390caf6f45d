#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "player/watch/observation.h"

namespace ostrevan::watch {

/// Carries observations from the threads of the sources to the one that listens. [any-thread]
class observation_queue {
public:
    /// Adds the time.
    void push(std::string player, news what);
    /// Nothing when none comes within `time`.
    std::optional<observation> pop(std::chrono::milliseconds time);

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<observation> waiting_;
};

}  // namespace ostrevan::watch
