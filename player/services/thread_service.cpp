#include "player/services/thread_service.h"

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::services {

void thread_service_impl::start(service_ptr_t<thread_task> task) {
    // The activity ends last, so that the loop outlives everything the thread does.
    std::thread([activity = core::main_loop::activity(loop_), task = std::move(task), &loop = loop_]() mutable {
        const core::job::scope scope(activity.of());
        std::string failure;
        try {
            task->run();
        } catch (...) {
            const thread_task& failed = *task;
            failure = "A worker of " + core::module_of(typeid(failed)) + " failed: " + core::text_of_failure();
        }
        task.reset();
        if (!failure.empty()) loop.post([failure] { throw std::runtime_error(failure); });
    }).detach();
}

}  // namespace ostrevan::services
