#pragma once

#include "ostrevan/work_origin.h"
#include "player/core/main_loop.h"

namespace ostrevan::services {

/// The job and the cause of the calling thread, held as an activity.
class work_origin_impl : public work_origin {
public:
    explicit work_origin_impl(core::main_loop& loop) noexcept : busy_(loop) {}
    void run(const std::function<void()>& work) override {
        const core::main_loop::activity::scope scope(busy_);
        work();
    }

private:
    const core::main_loop::activity busy_;
};

class work_origin_service_impl : public work_origin_service {
public:
    explicit work_origin_service_impl(core::main_loop& loop) noexcept : loop_(loop) {}
    service_ptr_t<work_origin> current() override { return service_new<work_origin_impl>(loop_); }

private:
    core::main_loop& loop_;
};

}  // namespace ostrevan::services
