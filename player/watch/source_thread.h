#pragma once

#include <functional>
#include <string>
#include <thread>

#include "player/system/wake_event.h"
#include "player/watch/observation_queue.h"

namespace ostrevan::watch {

/// The thread of a source. Pushes each failure as trouble of the source and tries again every few seconds. The destructor
/// ends it.
class source_thread {
public:
    /// `listen` connects to the players, pushes empty trouble, and what they do until `stop` is set. It throws with the
    /// reason when they cannot be reached, or no longer.
    source_thread(std::string name, observation_queue& out, std::function<void(system::wake_event& stop)> listen);
    ~source_thread();
    source_thread(const source_thread&) = delete;
    source_thread& operator=(const source_thread&) = delete;

private:
    void run();

    const std::string name_;
    observation_queue& out_;
    const std::function<void(system::wake_event& stop)> listen_;
    system::wake_event stop_;
    std::thread thread_;
};

}  // namespace ostrevan::watch
