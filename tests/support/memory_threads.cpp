#include "tests/support/memory_threads.h"

#include <stdexcept>
#include <utility>

namespace support {

void main_thread_queue::add_callback(ostrevan::service_ptr_t<ostrevan::main_thread_callback> callback) {
    const std::lock_guard guard(lock_);
    waiting_.push_back(std::move(callback));
}

std::size_t main_thread_queue::run() {
    std::size_t count = 0;
    for (;; ++count) {
        ostrevan::service_ptr_t<ostrevan::main_thread_callback> next;
        {
            const std::lock_guard guard(lock_);
            if (waiting_.empty()) return count;
            next = std::move(waiting_.front());
            waiting_.pop_front();
        }
        next->callback_run();
    }
}

void task_threads::start(ostrevan::service_ptr_t<ostrevan::thread_task> task) {
    if (how == mode::refuse) throw std::runtime_error("no thread can be had");
    ++started;
    const std::lock_guard guard(lock_);
    if (how == mode::on_demand) waiting_.push_back(std::move(task));
    else running_.emplace_back([task = std::move(task)] { task->run(); });
}

std::size_t task_threads::run_waiting() {
    std::size_t count = 0;
    for (;; ++count) {
        ostrevan::service_ptr_t<ostrevan::thread_task> next;
        {
            const std::lock_guard guard(lock_);
            if (waiting_.empty()) return count;
            next = std::move(waiting_.front());
            waiting_.pop_front();
        }
        std::thread([&] { next->run(); }).join();
    }
}

void task_threads::join() {
    for (;;) {
        std::vector<std::thread> threads;
        {
            const std::lock_guard guard(lock_);
            threads.swap(running_);
        }
        if (threads.empty()) return;
        for (auto& thread : threads) thread.join();
    }
}

}  // namespace support
