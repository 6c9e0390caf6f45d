#pragma once

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "ostrevan/main_thread.h"
#include "ostrevan/thread_service.h"

namespace support {

/// Callbacks wait here until the test runs them.
class main_thread_queue : public ostrevan::main_thread_callback_service {
public:
    void add_callback(ostrevan::service_ptr_t<ostrevan::main_thread_callback> callback) override;

    /// Runs callbacks, those that they add included, until none is left; answers how many ran.
    std::size_t run();

private:
    std::mutex lock_;
    std::deque<ostrevan::service_ptr_t<ostrevan::main_thread_callback>> waiting_;
};

/// Threads of their own for the component's tasks.
class task_threads : public ostrevan::thread_service {
public:
    enum class mode {
        on_demand,  ///< tasks wait for `run_waiting`
        at_once,    ///< tasks run beside the test
        refuse,     ///< no thread can be had
    };
    std::atomic<mode> how = mode::on_demand;
    std::atomic<std::size_t> started = 0;

    ~task_threads() override { join(); }

    void start(ostrevan::service_ptr_t<ostrevan::thread_task> task) override;

    /// Runs the tasks that wait, one after another, each on a thread of its own; answers how many ran.
    std::size_t run_waiting();
    /// Waits for the tasks that run beside the test.
    void join();

private:
    std::mutex lock_;
    std::deque<ostrevan::service_ptr_t<ostrevan::thread_task>> waiting_;
    std::vector<std::thread> running_;
};

}  // namespace support
