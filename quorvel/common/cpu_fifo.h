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

    /// What the task throws is dropped. When no thread can be had, that failure is thrown on; the task then stays in the
    /// queue and runs with the next one that is added.
    void add(task work);

private:
    void work_until_empty() noexcept;

    std::mutex lock_;
    std::deque<task> tasks_;
    bool running_ = false;
};

}  // namespace ostrevan
