#include "player/core/main_loop.h"

#include <exception>
#include <string>

#include "ostrevan/core_api.h"
#include "player/system/failure_text.h"

namespace ostrevan::core {

void main_loop::post(task work) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
    changed_.notify_one();
}

void main_loop::begin_activity() noexcept {
    const std::lock_guard lock(mutex_);
    ++activities_;
}

void main_loop::end_activity() noexcept {
    const std::lock_guard lock(mutex_);
    --activities_;
    changed_.notify_one();
}

void main_loop::run_until_idle() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return !queue_.empty() || activities_ == 0; });
        if (queue_.empty()) return;
        task work = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        try {
            work();
        } catch (const std::exception& error) {
            on_error_(system::failure_text(error).c_str());
        } catch (...) {
            on_error_("unknown error");
        }
        work = nullptr;  // destroys the task's captures on this thread, outside the lock
        lock.lock();
    }
}

void check_main_thread([[maybe_unused]] const char* method) noexcept {
#ifndef NDEBUG
    if (core_api::player() == nullptr || core_api::is_main_thread()) return;
    uBugCheck((std::string("called off the main thread: ") + method).c_str());
#endif
}

}  // namespace ostrevan::core
