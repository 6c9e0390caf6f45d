#include "player/library/worker_group.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace ostrevan::library {

void worker_group::run(std::size_t tasks, const std::function<void()>& work, const std::function<void()>& meanwhile) {
    const auto body = [&] {
        try {
            work();
        } catch (...) {
            note_failure();
        }
        const std::lock_guard guard(mutex_);
        --running_;
        changed_.notify_one();
    };

    std::vector<std::jthread> threads;
    try {
        for (std::size_t i = 0; i < std::min(workers_, tasks); ++i) {
            {
                const std::lock_guard guard(mutex_);
                ++running_;
            }
            try {
                threads.emplace_back(body);
            } catch (...) {
                const std::lock_guard guard(mutex_);
                --running_;
                throw;
            }
        }
        std::unique_lock lock(mutex_);
        while (running_ != 0) {
            changed_.wait_for(lock, std::chrono::milliseconds(100), [&] { return running_ == 0 || is_woken_; });
            is_woken_ = false;
            lock.unlock();
            meanwhile();
            lock.lock();
        }
    } catch (...) {
        note_failure();
    }
    threads.clear();
    if (failure_) std::rethrow_exception(failure_);
    meanwhile();
}

void worker_group::wake() {
    const std::lock_guard guard(mutex_);
    is_woken_ = true;
    changed_.notify_one();
}

void worker_group::note_failure() noexcept {
    const std::lock_guard guard(mutex_);
    if (!failure_) failure_ = std::current_exception();
    failed_ = true;
}

}  // namespace ostrevan::library
