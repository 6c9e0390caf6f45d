#include "player/core/main_loop.h"

#include <exception>
#include <string>

#include "ostrevan/core_api.h"
#include "player/system/failure_text.h"

namespace ostrevan::core {

void main_loop::post(task work) {
    const auto& of = job::current();
    if (of) of->begin();
    const std::lock_guard lock(mutex_);
    queue_.push_back({of, cause_scope::current(), std::move(work)});
    changed_.notify_one();
    if (wake_) wake_();
}

void main_loop::run_inside(std::function<void()> wake) {
    const std::lock_guard lock(mutex_);
    wake_ = std::move(wake);
    if (wake_ && !queue_.empty()) wake_();
}

void main_loop::begin_activity(const job_ptr& of) noexcept {
    if (of) of->begin();
    const std::lock_guard lock(mutex_);
    ++activities_;
}

void main_loop::end_activity(const job_ptr& of) noexcept {
    if (of) of->end();
    const std::lock_guard lock(mutex_);
    --activities_;
    changed_.notify_one();
}

void main_loop::start_thread(task work) {
    std::thread([this, busy = activity(*this), work = std::move(work)]() mutable {
        const activity::scope scope(busy);
        try {
            work();
        } catch (...) {
            post([failure = std::current_exception()] { std::rethrow_exception(failure); });
        }
        work = nullptr;  // while the loop still waits
    }).detach();
}

void main_loop::run(posted& next) const {
    const job::scope scope(next.of);
    const cause_scope why(next.why);
    try {
        next.work();
    } catch (const std::exception& error) {
        on_error_(system::failure_text(error).c_str());
    } catch (...) {
        on_error_("unknown error");
    }
    next.work = nullptr;  // destroys the task's captures on this thread, and before the job can be idle
}

void main_loop::run_until_idle() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return !queue_.empty() || activities_ == 0; });
        if (queue_.empty()) return;
        run_first(lock);
    }
}

bool main_loop::run_next() {
    std::unique_lock lock(mutex_);
    if (queue_.empty()) return false;
    run_first(lock);
    return true;
}

void main_loop::run_first(std::unique_lock<std::mutex>& lock) {
    posted next = std::move(queue_.front());
    queue_.pop_front();
    lock.unlock();
    run(next);
    if (next.of) next.of->end();
    next.of.reset();
    lock.lock();
}

void check_main_thread([[maybe_unused]] const char* method) noexcept {
#ifndef NDEBUG
    if (core_api::player() == nullptr || core_api::is_main_thread()) return;
    uBugCheck((std::string("called off the main thread: ") + method).c_str());
#endif
}

}  // namespace ostrevan::core
