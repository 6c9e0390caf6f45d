#include "player/services/dialog_service.h"

#include <utility>

namespace ostrevan::services {

void dialog_service_impl::open(dialog_rules_ptr rules) {
    core::check_main_thread("dialog_service::open");
    const auto dialog = std::make_shared<view::open_dialog>(rules, registry_, player_);
    rules->on_open(*dialog);
    if (dialog->is_open()) loop_.post([this, dialog] { take_turn(dialog, 0); });
}

void dialog_service_impl::take_turn(const std::shared_ptr<view::open_dialog>& dialog, unsigned turn) {
    ui_.show_dialog(*dialog, turn);
    if (dialog->is_open()) loop_.post([this, dialog, turn] { take_turn(dialog, turn + 1); });
}

}  // namespace ostrevan::services
