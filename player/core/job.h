#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace ostrevan::core {

class job;
using job_ptr = std::shared_ptr<job>;

/// One command under way. It counts what it has begun, posted tasks and activities, and is idle when all of that is done. It
/// has a thread of its own, which carries out the command and everything that belongs on the user's side, such as reading an
/// answer.
class job : public std::enable_shared_from_this<job> {
public:
    /// The thread that makes it is its own until another one calls `take_over`.
    job() : stop_(&own_stop_) {}
    /// Stops when the flag of somebody else becomes true, which a signal handler may set.
    explicit job(std::atomic<bool>& stop) : stop_(&stop) {}
    job(const job&) = delete;
    job& operator=(const job&) = delete;

    /// The job that this thread works for; null when there is none.
    static const job_ptr& current() noexcept;
    /// Makes a job the current one of this thread.
    class scope {
    public:
        explicit scope(job_ptr of) noexcept;
        ~scope();
        scope(const scope&) = delete;
        scope& operator=(const scope&) = delete;

    private:
        job_ptr former_;
    };

    /// Becomes true when the user wants the command to end. Long work checks it and stops at the next consistent point.
    [[nodiscard]] std::atomic<bool>& stop() noexcept { return *stop_; }

    // [any-thread]
    /// One more, or one less, of the things that the job waits for.
    void begin();
    void end();
    /// Runs the task on the job's own thread: at once when called there, else when that thread waits next.
    void run_on_own_thread(std::function<void()> task);

    /// Makes the calling thread the job's own. The former one must no longer use it.
    void take_over();
    /// Without an own thread, tasks wait until another one takes over.
    void leave();

    [[nodiscard]] bool is_own_thread();

    // On the job's own thread.
    /// Carries out tasks until `is_done`, which is asked after each of them, after every end of something begun, and again
    /// and again if `look_again` says so. It must not use the job.
    void serve_until(const std::function<bool()>& is_done, std::chrono::milliseconds look_again = std::chrono::hours(1));
    void wait_until_idle();
    /// Carries out the tasks that wait.
    void serve() {
        serve_until([] { return true; });
    }

private:
    std::atomic<bool> own_stop_{false};
    std::atomic<bool>* const stop_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::thread::id own_thread_ = std::this_thread::get_id();
    std::deque<std::function<void()>> tasks_;
    std::size_t begun_ = 0;
};

/// Becomes true when the user wants the work of this thread to end: that of its job or, without one, the whole process.
const std::atomic<bool>& stop_flag() noexcept;
inline bool is_stopping() noexcept { return stop_flag(); }

}  // namespace ostrevan::core
