#pragma once

#include "ostrevan/main_thread.h"
#include "player/core/main_loop.h"

namespace ostrevan::services {

/// Posts a component's callbacks to the main loop.
class main_thread_callback_service_impl : public main_thread_callback_service {
public:
    explicit main_thread_callback_service_impl(core::main_loop& loop) noexcept : loop_(loop) {}
    void add_callback(service_ptr_t<main_thread_callback> callback) override;

private:
    core::main_loop& loop_;
};

}  // namespace ostrevan::services
