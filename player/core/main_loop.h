#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

#include "player/core/cause.h"
#include "player/core/job.h"

namespace ostrevan::core {

/// The main loop: work posted from any thread runs on the main thread, one task at a time, in the order of posting, and
/// belongs to the job that posted it. The thread that makes the loop is the main thread.
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

    /// Runs work on the main thread, waits for it and returns its value, or throws what it has thrown. Meanwhile the own
    /// thread of a job serves the job. Called on the main thread, it just runs the work.
    template <typename Work>
    auto call(Work work) {
        if (on_main_thread()) return work();
        const auto packed = std::make_shared<std::packaged_task<std::invoke_result_t<Work&>()>>(std::move(work));
        auto result = packed->get_future();
        post([packed] { (*packed)(); });
        if (const auto& of = job::current(); of && of->is_own_thread())
            of->serve_until([&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
        return result.get();
    }

    /// Keeps the loop and the current job from being idle while it lives: a running worker, an open question. Remembers the
    /// cause. [any-thread]
    class activity {
    public:
        explicit activity(main_loop& loop) noexcept : loop_(&loop), job_(job::current()), why_(cause_scope::current()) {
            loop_->begin_activity(job_);
        }
        activity(activity&& other) noexcept
            : loop_(std::exchange(other.loop_, nullptr)), job_(std::move(other.job_)), why_(std::move(other.why_)) {}
        activity& operator=(activity&& other) noexcept {
            std::swap(loop_, other.loop_);
            std::swap(job_, other.job_);
            std::swap(why_, other.why_);
            return *this;
        }
        activity(const activity&) = delete;
        activity& operator=(const activity&) = delete;
        ~activity() {
            if (loop_ != nullptr) loop_->end_activity(job_);
        }

        /// Makes its job and its cause those of the calling thread.
        class scope {
        public:
            explicit scope(const activity& of) noexcept : job_(of.job_), why_(of.why_) {}

        private:
            job::scope job_;
            cause_scope why_;
        };

    private:
        main_loop* loop_;
        job_ptr job_;
        cause_ptr why_;
    };

    /// Runs work on a thread of its own, as an activity of the current job. What it throws is treated as if posted work had
    /// thrown it. [any-thread]
    void start_thread(task work);

    /// Runs posted work until none is left and no activity is under way. [main-thread]
    void run_until_idle();

    // Inside the loop of a toolkit.
    /// From now on `wake` is called when work waits; without one, no more. It may be called on any thread and must not use
    /// this loop. [main-thread]
    void run_inside(std::function<void()> wake);
    /// Runs the work posted first; returns false when none waits. [main-thread]
    bool run_next();

private:
    struct posted {
        job_ptr of;
        cause_ptr why;
        task work;
    };

    void begin_activity(const job_ptr& of) noexcept;
    void end_activity(const job_ptr& of) noexcept;
    void run(posted& next) const;
    void run_first(std::unique_lock<std::mutex>& lock);

    const error_sink on_error_;
    const std::thread::id main_thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> wake_;  // may be empty
    std::deque<posted> queue_;
    std::size_t activities_ = 0;
};

/// In debug builds, a bug check when a method tagged [main-thread] is entered on another thread.
void check_main_thread(const char* method) noexcept;

}  // namespace ostrevan::core
