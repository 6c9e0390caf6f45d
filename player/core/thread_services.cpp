#include "player/core/thread_services.h"

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "player/core/component_call.h"

namespace ostrevan {

void main_thread_service_impl::add_callback(service_ptr_t<main_thread_callback> callback) {
    loop_.post([callback = std::move(callback)] { call_component(*callback, [&] { callback->callback_run(); }); });
}

void thread_service_impl::start(service_ptr_t<thread_task> task) {
    // The activity ends last, so that the loop outlives everything the thread does.
    std::thread([activity = main_loop::activity(loop_), task = std::move(task), &loop = loop_]() mutable {
        std::string failure;
        try {
            task->run();
        } catch (...) {
            failure = "A worker of " + module_of(typeid(*task)) + " failed: " + text_of_failure();
        }
        task.reset();
        if (!failure.empty()) loop.post([failure] { throw std::runtime_error(failure); });
    }).detach();
}

}  // namespace ostrevan
