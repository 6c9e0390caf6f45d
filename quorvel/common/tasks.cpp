#include "quorvel/common/tasks.h"

#include <exception>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/main_thread.h"
#include "quorvel/common/cpu_fifo.h"
#include "quorvel/common/messages.h"

namespace quorvel {
namespace {

class posted_work : public ostrevan::main_thread_callback {
public:
    explicit posted_work(std::function<void()> work) noexcept : work_(std::move(work)) {}
    void callback_run() override { work_(); }

private:
    std::function<void()> work_;
};

/// Never destroyed: a task may still run while the process ends.
ostrevan::CPUFIFO& worker_queue() {
    static auto& fifo = *new ostrevan::CPUFIFO;
    return fifo;
}

}  // namespace

void post_to_main_thread(std::function<void()> work) {
    ostrevan::get_service<ostrevan::main_thread_callback_service>()->add_callback(
        ostrevan::service_new<posted_work>(std::move(work)));
}

void run_on_worker(const std::string& failure, std::function<void()> task) {
    try {
        worker_queue().add([failure, task = std::move(task)] {
            try {
                task();
            } catch (const std::exception& e) {
                print_to_console(failure + ": " + e.what());
            }
        });
    } catch (const std::exception& e) {
        print_to_console(failure + ": " + e.what() +
                         " (it is tried again with the next change of the library, or at the end)");
    }
}

void finish_worker() noexcept { worker_queue().finish(); }

}  // namespace quorvel
