#include "player/core/job.h"

#include "player/system/interrupt.h"

namespace ostrevan::core {
namespace {

job_ptr& job_of_thread() noexcept {
    static thread_local job_ptr current;
    return current;
}

}  // namespace

const job_ptr& job::current() noexcept { return job_of_thread(); }

job::scope::scope(job_ptr of) noexcept : former_(std::exchange(job_of_thread(), std::move(of))) {}

job::scope::~scope() { job_of_thread() = std::move(former_); }

void job::begin() {
    const std::lock_guard lock(mutex_);
    ++begun_;
}

void job::end() {
    const std::lock_guard lock(mutex_);
    --begun_;
    changed_.notify_one();
}

void job::run_on_own_thread(std::function<void()> task) {
    {
        const std::lock_guard lock(mutex_);
        if (std::this_thread::get_id() != own_thread_) {
            tasks_.push_back(std::move(task));
            changed_.notify_one();
            return;
        }
    }
    task();
}

void job::take_over() {
    const std::lock_guard lock(mutex_);
    own_thread_ = std::this_thread::get_id();
}

void job::leave() {
    const std::lock_guard lock(mutex_);
    own_thread_ = {};
}

bool job::is_own_thread() {
    const std::lock_guard lock(mutex_);
    return std::this_thread::get_id() == own_thread_;
}

void job::serve_until(const std::function<bool()>& is_done, std::chrono::milliseconds look_again) {
    std::unique_lock lock(mutex_);
    for (;;) {
        while (tasks_.empty()) {
            if (is_done()) return;
            changed_.wait_for(lock, look_again);
        }
        auto task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        task = nullptr;  // destroys its captures outside the lock
        lock.lock();
    }
}

void job::wait_until_idle() {
    serve_until([this] { return begun_ == 0; });
}

const std::atomic<bool>& stop_flag() noexcept {
    const auto& job = job::current();
    return job ? job->stop() : system::interrupted();
}

}  // namespace ostrevan::core
