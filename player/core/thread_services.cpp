#include "player/core/thread_services.h"

#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "player/core/failure_text.h"

namespace ostrevan {

void main_thread_service_impl::add_callback(service_ptr_t<main_thread_callback> callback) {
    loop_.post([callback = std::move(callback)] { callback->callback_run(); });
}

void thread_service_impl::start(service_ptr_t<thread_task> task) {
    // The activity ends last, so that the loop outlives everything the thread does.
    std::thread([activity = main_loop::activity(loop_), task = std::move(task), &loop = loop_]() mutable {
        std::string failure;
        try {
            task->run();
        } catch (const std::exception& error) {
            failure = failure_text(error);
        } catch (...) {
            failure = "unknown error";
        }
        task.reset();
        if (!failure.empty()) loop.post([failure] { throw std::runtime_error("A worker failed: " + failure); });
    }).detach();
}

}  // namespace ostrevan
