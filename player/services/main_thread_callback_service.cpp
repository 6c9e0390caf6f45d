#include "player/services/main_thread_callback_service.h"

#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::services {

void main_thread_callback_service_impl::add_callback(service_ptr_t<main_thread_callback> callback) {
    loop_.post([callback = std::move(callback)] { core::call_component(*callback, [&] { callback->callback_run(); }); });
}

}  // namespace ostrevan::services
