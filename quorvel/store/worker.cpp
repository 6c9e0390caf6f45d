#include "quorvel/store/worker.h"

#include <exception>
#include <utility>

#include "quorvel/common/console_line.h"
#include "quorvel/common/cpu_fifo.h"

namespace quorvel {
namespace {

/// Never destroyed: a task may still run while the process ends.
ostrevan::CPUFIFO& queue() {
    static auto& fifo = *new ostrevan::CPUFIFO;
    return fifo;
}

}  // namespace

void run_on_worker(std::string failure, std::function<void()> task) {
    try {
        queue().add([failure, task = std::move(task)] {
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

void finish_worker() noexcept { queue().finish(); }

}  // namespace quorvel
