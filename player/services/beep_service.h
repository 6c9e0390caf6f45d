#pragma once

#include "ostrevan/clipboard.h"
#include "player/core/main_loop.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

class beep_service_impl : public beep_service {
public:
    explicit beep_service_impl(view::front_end& ui) : ui_(ui) {}
    void beep() override {
        core::check_main_thread("beep");
        ui_.beep();
    }

private:
    view::front_end& ui_;
};

}  // namespace ostrevan::services
