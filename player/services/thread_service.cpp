#include "player/services/thread_service.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::services {

void thread_service_impl::start(service_ptr_t<thread_task> task) {
    loop_.start_thread([task = std::move(task)] {
        try {
            task->run();
        } catch (...) {
            const thread_task& failed = *task;
            throw std::runtime_error("A worker of " + core::module_of(typeid(failed)) +
                                     " failed: " + core::text_of_failure());
        }
    });
}

}  // namespace ostrevan::services
