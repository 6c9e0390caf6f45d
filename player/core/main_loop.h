#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace ostrevan::core {

/// The main loop: work posted from any thread runs on the main thread, one task at a time, in the order of posting. The
/// thread that makes the loop is the main thread.
class main_loop {
public:
    using task = std::function<void()>;
    /// Receives the text of what a task threw.
    using error_sink = std::function<void(const char* what)>;

    explicit main_loop(error_sink on_error) : on_error_(std::move(on_error)), main_thread_(std::this_thread::get_id()) {}
    main_loop(const main_loop&) = delete;
    main_loop& operator=(const main_loop&) = delete;

    [[nodiscard]] bool on_main_thread() const noexcept { return std::this_thread::get_id() == main_thread_; }

    /// [any-thread]
    void post(task work);

    /// Keeps the loop from being idle while it lives: a running worker, an open question. [any-thread]
    class activity {
    public:
        explicit activity(main_loop& loop) noexcept : loop_(&loop) { loop_->begin_activity(); }
        activity(activity&& other) noexcept : loop_(std::exchange(other.loop_, nullptr)) {}
        activity& operator=(activity&&) = delete;
        activity(const activity&) = delete;
        activity& operator=(const activity&) = delete;
        ~activity() {
            if (loop_ != nullptr) loop_->end_activity();
        }

    private:
        main_loop* loop_;
    };

    /// Runs posted work until none is left and no activity is under way. [main-thread]
    void run_until_idle();

private:
    void begin_activity() noexcept;
    void end_activity() noexcept;

    const error_sink on_error_;
    const std::thread::id main_thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<task> queue_;
    std::size_t activities_ = 0;
};

/// In debug builds, a bug check when a method tagged [main-thread] is entered on another thread.
void check_main_thread(const char* method) noexcept;

}  // namespace ostrevan::core
