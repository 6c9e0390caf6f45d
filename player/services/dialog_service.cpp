#include "player/services/dialog_service.h"

#include <utility>

namespace ostrevan::services {

void dialog_service_impl::open(dialog_rules_ptr rules) {
    core::check_main_thread("dialog_service::open");
    auto dialog = std::make_shared<view::open_dialog>(rules, loop_, registry_, player_);
    rules->on_open(*dialog);
    if (dialog->is_open()) ui_.show_dialog(std::move(dialog));
}

}  // namespace ostrevan::services
