#pragma once

#include <atomic>
#include <deque>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "ostrevan/console.h"
#include "ostrevan/core_api.h"
#include "ostrevan/main_thread.h"
#include "ostrevan/thread_service.h"

namespace ostrevan_test {

/// A queue that any thread may add to.
template <typename T>
class handed_over {
public:
    void add(T item) {
        const std::lock_guard guard(lock_);
        items_.push_back(std::move(item));
    }
    /// Takes items until none is left, those added meanwhile too. Returns their number.
    template <typename Work>
    std::size_t take_all(Work&& work) {
        for (std::size_t count = 0;; ++count) {
            std::unique_lock guard(lock_);
            if (items_.empty()) return count;
            T next = std::move(items_.front());
            items_.pop_front();
            guard.unlock();
            work(next);
        }
    }

private:
    std::mutex lock_;
    std::deque<T> items_;
};

/// As in the player, an exception becomes a line of the console.
template <typename Work>
void guarded(Work&& work) noexcept {
    const auto console = ostrevan::find_service<ostrevan::console_service>();
    try {
        work();
    } catch (const std::exception& error) {
        if (console) console->print(error.what());
    } catch (...) {
        if (console) console->print("unknown error");
    }
}

/// Callbacks wait here until the test runs them.
class main_thread_queue : public ostrevan::main_thread_callback_service {
public:
    using callback_ptr = ostrevan::service_ptr_t<ostrevan::main_thread_callback>;

    void add_callback(callback_ptr callback) override { waiting_.add(std::move(callback)); }
    /// Returns the number that ran.
    std::size_t run() {
        return waiting_.take_all([](const callback_ptr& callback) { guarded([&] { callback->callback_run(); }); });
    }

private:
    handed_over<callback_ptr> waiting_;
};

/// Threads of their own for the component's tasks.
class task_threads : public ostrevan::thread_service {
public:
    using task_ptr = ostrevan::service_ptr_t<ostrevan::thread_task>;
    enum class mode {
        on_demand,  ///< tasks wait for `run_waiting`
        at_once,    ///< tasks run beside the test
        refuse,     ///< no thread can be had
    };
    std::atomic<mode> how = mode::on_demand;
    std::atomic<std::size_t> started = 0;

    ~task_threads() override { join(); }

    void start(task_ptr task) override {
        if (how == mode::refuse) throw std::runtime_error("no thread can be had");
        ++started;
        if (how == mode::on_demand) waiting_.add(std::move(task));
        else running_.add(std::thread([task = std::move(task)] { guarded([&] { task->run(); }); }));
    }
    /// Runs the tasks that wait, one after another, each on a thread of its own. Returns their number.
    std::size_t run_waiting() {
        return waiting_.take_all([](const task_ptr& task) { std::thread([&] { guarded([&] { task->run(); }); }).join(); });
    }
    /// Waits for the tasks that run beside the test.
    void join() {
        running_.take_all([](std::thread& thread) { thread.join(); });
    }

private:
    handed_over<task_ptr> waiting_;
    handed_over<std::thread> running_;
};

}  // namespace ostrevan_test
