#pragma once

#include "ostrevan/main_thread.h"
#include "ostrevan/thread_service.h"
#include "player/core/main_loop.h"

namespace ostrevan {

/// Posts a component's callbacks to the main loop.
class main_thread_service_impl : public main_thread_callback_service {
public:
    explicit main_thread_service_impl(main_loop& loop) noexcept : loop_(loop) {}
    void add_callback(service_ptr_t<main_thread_callback> callback) override;

private:
    main_loop& loop_;
};

/// Runs a component's tasks on threads of their own, each an activity of the main loop.
class thread_service_impl : public thread_service {
public:
    explicit thread_service_impl(main_loop& loop) noexcept : loop_(loop) {}
    void start(service_ptr_t<thread_task> task) override;

private:
    main_loop& loop_;
};

}  // namespace ostrevan
