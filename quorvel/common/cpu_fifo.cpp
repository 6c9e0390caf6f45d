#include "quorvel/common/cpu_fifo.h"

#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/thread_service.h"

namespace ostrevan {
namespace {

class worker_run : public thread_task {
public:
    explicit worker_run(std::function<void()> work) noexcept : work_(std::move(work)) {}
    void run() override { work_(); }

private:
    std::function<void()> work_;
};

service_ptr_t<work_origin> origin_of_now() {
    const auto origins = find_service<work_origin_service>();
    return origins ? origins->current() : nullptr;
}

void run_for(const service_ptr_t<work_origin>& origin, const std::function<void()>& work) {
    if (origin) origin->run(work);
    else work();
}

}  // namespace

void CPUFIFO::add(task work) {
    auto origin = origin_of_now();
    {
        const std::lock_guard guard(lock_);
        tasks_.push_back({std::move(work), std::move(origin)});
        if (std::exchange(running_, true)) return;
    }
    start_next();
}

/// A thread belongs to the command that it is started for.
void CPUFIFO::start_next() {
    try {
        service_ptr_t<work_origin> origin;
        {
            const std::lock_guard guard(lock_);
            if (!tasks_.empty()) origin = tasks_.front().origin;
        }
        run_for(origin, [this] { get_service<thread_service>()->start(service_new<worker_run>([this] { work(); })); });
    } catch (...) {
        const std::lock_guard guard(lock_);
        running_ = false;
        // No command waits for what runs only with the next task that is added, or at the end.
        for (auto& each : tasks_) each.origin = nullptr;
        throw;
    }
}

bool CPUFIFO::run_next() noexcept {
    const std::lock_guard turn(turn_);
    queued next;
    {
        const std::lock_guard guard(lock_);
        if (tasks_.empty()) return false;
        next = std::move(tasks_.front());
        tasks_.pop_front();
    }
    try {
        run_for(next.origin, next.work);
    } catch (...) {  // tasks deal with their own failures
    }
    return true;
}

void CPUFIFO::work() noexcept {
    for (bool is_for_other = false; !is_for_other;) {
        run_next();
        const std::lock_guard guard(lock_);
        if (tasks_.empty()) {
            running_ = false;
            return;
        }
        is_for_other = tasks_.front().origin != nullptr;
    }
    try {
        start_next();
    } catch (...) {  // the tasks wait for the next one that is added, or for the end
    }
}

void CPUFIFO::finish() noexcept {
    while (run_next()) {
    }
}

}  // namespace ostrevan
