#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>

namespace ostrevan::library {

/// Runs the same work on several threads, attended by the calling thread.
class worker_group {
public:
    /// `user_stop` may be null.
    worker_group(std::size_t workers, const std::atomic<bool>* user_stop) noexcept
        : workers_(workers), user_stop_(user_stop) {}

    /// Calls `work` on `min(workers, tasks)` threads, and `meanwhile` on the calling thread: when woken, at least every 100
    /// ms, and once after the last thread has ended. An exception of one stops the others and is rethrown.
    void run(std::size_t tasks, const std::function<void()>& work, const std::function<void()>& meanwhile);

    /// Calls `meanwhile` soon. [any-thread]
    void wake();
    /// The user wants to stop, or something was thrown: work should end. [any-thread]
    [[nodiscard]] bool is_stopped() const noexcept {
        return failed_.load(std::memory_order_relaxed) || is_stopped_by_user();
    }
    [[nodiscard]] bool is_stopped_by_user() const noexcept {
        return user_stop_ != nullptr && user_stop_->load(std::memory_order_relaxed);
    }

private:
    void note_failure() noexcept;

    const std::size_t workers_;
    const std::atomic<bool>* const user_stop_;
    std::atomic<bool> failed_ = false;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t running_ = 0;
    bool is_woken_ = false;
    std::exception_ptr failure_;
};

}  // namespace ostrevan::library
