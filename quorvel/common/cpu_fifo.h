#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace ostrevan {

/// Tasks that run one after another, in the order in which they were added, on at most one thread of the player's thread
/// service. The queue must outlive its last task. [any-thread]
class CPUFIFO {
public:
    using task = std::function<void()>;

    /// What the task throws is dropped. Throws when no thread can be started; the task then stays in the queue and runs with
    /// the next one that is added.
    void add(task work);

    /// Waits for the running task, then runs the others here. Must not be called by a task.
    void finish() noexcept;

private:
    bool run_next() noexcept;
    void work_until_empty() noexcept;

    std::mutex turn_;  ///< held while a task is taken and run
    std::mutex lock_;
    std::deque<task> tasks_;
    bool running_ = false;
};

}  // namespace ostrevan
