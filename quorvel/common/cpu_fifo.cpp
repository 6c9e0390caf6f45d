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

}  // namespace

void CPUFIFO::add(task work) {
    {
        const std::lock_guard guard(lock_);
        tasks_.push_back(std::move(work));
        if (std::exchange(running_, true)) return;
    }
    try {
        get_service<thread_service>()->start(service_new<worker_run>([this] { work_until_empty(); }));
    } catch (...) {
        const std::lock_guard guard(lock_);
        running_ = false;
        throw;
    }
}

bool CPUFIFO::run_next() noexcept {
    const std::lock_guard turn(turn_);
    task next;
    {
        const std::lock_guard guard(lock_);
        if (tasks_.empty()) return false;
        next = std::move(tasks_.front());
        tasks_.pop_front();
    }
    try {
        next();
    } catch (...) {  // tasks deal with their own failures
    }
    return true;
}

void CPUFIFO::work_until_empty() noexcept {
    for (;;) {
        while (run_next()) {
        }
        const std::lock_guard guard(lock_);
        if (!tasks_.empty()) continue;
        running_ = false;
        return;
    }
}

void CPUFIFO::finish() noexcept {
    while (run_next()) {
    }
}

}  // namespace ostrevan
