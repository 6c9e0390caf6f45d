#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "player/index/index_changes.h"

namespace ostrevan::index {

/// The one thread that uses the database. It first loads all of it, since nothing may be written to a file not yet read
/// without error. Then it saves whatever is queued, together. Failures are retried with the next change, on request, and
/// from time to time.
class index_writer {
public:
    struct steps {
        /// Returns false when it was stopped.
        std::function<bool(const std::stop_token&)> load;
        std::function<void(std::span<const index_job>)> save;
        /// Called on the writer's thread, once for a series of failures. It must not wait for the writer.
        std::function<void(const std::string&)> report;
    };

    index_writer(steps work, std::chrono::milliseconds retry_interval);
    /// Saves the queued jobs, or reports the failure.
    ~index_writer();

    /// The jobs are saved together. [any-thread]
    void enqueue(std::vector<index_job> jobs);

    /// Wait until the database has been loaded, or until all that was queued before is on disk. Throw std::runtime_error
    /// when an attempt begun after the call has failed. [any-thread]
    void wait_loaded();
    void flush();
    [[nodiscard]] bool pending() const;

private:
    static constexpr std::uint64_t loaded_target = 1;
    /// What is queued shortly after, as the event of a play after its count, is saved in the same transaction. Whoever waits
    /// ends this.
    static constexpr std::chrono::milliseconds gathering{10};

    void run(const std::stop_token& stop);
    /// Attempts the next step; returns false when there is nothing left to try.
    bool attempt(std::unique_lock<std::mutex>& lock, const std::stop_token& stop);
    /// Returns the failure, if any.
    std::optional<std::string> wait_for(std::uint64_t target);

    const steps work_;
    const std::chrono::milliseconds retry_interval_;

    mutable std::mutex mutex_;
    std::condition_variable_any wake_;
    std::condition_variable done_changed_;
    std::vector<index_job> queue_;
    std::uint64_t queued_ = loaded_target;  // requested steps; the first is loading
    std::uint64_t done_ = 0;
    bool urged_ = true;     // somebody waits
    bool has_news_ = true;  // since the last attempt
    bool failing_ = false;
    std::uint64_t attempts_ = 0;
    std::uint64_t failed_attempt_ = 0;
    std::string failure_;
    std::vector<index_job> saving_;  // taken from the queue, not yet on disk; used by the writer only

    std::jthread thread_;
};

}  // namespace ostrevan::index
