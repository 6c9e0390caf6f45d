#pragma once

#include <memory>

#include "ostrevan/dialog.h"
#include "player/core/main_loop.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// Dialogs for components.
class dialog_service_impl : public dialog_service {
public:
    dialog_service_impl(core::main_loop& loop, view::front_end& ui, dialog_registry& registry, player_api& player)
        : loop_(loop), ui_(ui), registry_(registry), player_(player) {}
    void open(dialog_rules_ptr rules) override;

private:
    core::main_loop& loop_;
    view::front_end& ui_;
    dialog_registry& registry_;
    player_api& player_;
};

}  // namespace ostrevan::services
