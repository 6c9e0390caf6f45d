#include "player/view/open_dialog.h"

#include <algorithm>
#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::view {

open_dialog::open_dialog(dialog_rules_ptr rules, core::main_loop& loop, dialog_registry& registry, player_api& player)
    : rules_(std::move(rules)), loop_(loop), registry_(registry), player_(player), states_(layout().controls.size()) {
    registry_.add(*this);
}

open_dialog::~open_dialog() {
    registry_.forget(*this);
    rules_->on_closed();
}

void open_dialog::press(int button) {
    core::call_component(*rules_, [&] { rules_->on_button(*this, button); });
}

std::size_t open_dialog::index_of(int id) const {
    const auto controls = layout().controls;
    const auto found = std::ranges::find(controls, id, &dialog_control::id);
    if (found == controls.end()) player_.bug_check("dialog_window: the layout has no control with this id");
    return static_cast<std::size_t>(found - controls.begin());
}

void open_dialog::set_checked(int id, bool checked) {
    if (checked)
        for (const auto& other : radio_group(layout(), id)) states_[index_of(other.id)].is_checked = false;
    states_[index_of(id)].is_checked = checked;
}

}  // namespace ostrevan::view
