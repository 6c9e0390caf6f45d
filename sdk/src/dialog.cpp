#include "ostrevan/dialog.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/file_dialog.h"

namespace ostrevan {

std::span<const dialog_control> radio_group(const dialog_layout& layout, int id) noexcept {
    const auto controls = layout.controls;
    const auto is_radio = [](const dialog_control& control) { return control.kind == dialog_control_kind::radio_button; };
    const auto found = std::ranges::find(controls, id, &dialog_control::id);
    if (found == controls.end() || !is_radio(*found)) return {};
    auto first = found;
    while (first != controls.begin() && is_radio(*std::prev(first))) --first;
    return {first, std::find_if_not(found, controls.end(), is_radio)};
}

bool ModalDialog_CanCreateNew() noexcept {
    const auto registry = find_service<dialog_registry>();
    return !registry || registry->can_create_new();
}

void ModalDialog_PokeExisting() {
    if (const auto registry = find_service<dialog_registry>()) registry->poke_existing();
}

void uGetOpenFileName(file_dialog_service::query_t query) { get_service<file_dialog_service>()->ask(std::move(query)); }

}  // namespace ostrevan
