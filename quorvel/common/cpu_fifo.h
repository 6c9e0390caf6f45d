#pragma once

#include <deque>
#include <functional>
#include <mutex>

#include "ostrevan/work_origin.h"

namespace ostrevan {

/// Tasks that run one after another, in the order in which they were added, on threads of the player's thread service. Each
/// belongs to the command that added it: another one is not waited for. The queue must outlive its last task. [any-thread]
class CPUFIFO {
public:
    using task = std::function<void()>;

    /// What the task throws is dropped. Throws when no thread can be started; the task then stays in the queue and runs with
    /// the next one that is added.
    void add(task work);

    /// Waits for the running task, then runs the others here. Must not be called by a task.
    void finish() noexcept;

private:
    struct queued {
        task work;
        service_ptr_t<work_origin> origin;  ///< null when the player has none
    };
    bool run_next() noexcept;
    void start_next();
    void work() noexcept;

    std::mutex turn_;  ///< held while a task is taken and run
    std::mutex lock_;
    std::deque<queued> tasks_;
    bool running_ = false;  ///< a thread works, or is being started
};

}  // namespace ostrevan
