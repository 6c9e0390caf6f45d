#pragma once

#include "ostrevan/thread_service.h"
#include "player/core/main_loop.h"

namespace ostrevan::services {

/// Runs tasks of components on separate threads, each an activity of the job that started it.
class thread_service_impl : public thread_service {
public:
    explicit thread_service_impl(core::main_loop& loop) noexcept : loop_(loop) {}
    void start(service_ptr_t<thread_task> task) override;

private:
    core::main_loop& loop_;
};

}  // namespace ostrevan::services
