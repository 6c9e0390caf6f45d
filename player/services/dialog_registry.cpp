#include "player/services/dialog_registry.h"

#include "player/core/main_loop.h"

namespace ostrevan::services {

bool dialog_registry_impl::can_create_new() const noexcept {
    core::check_main_thread("can_create_new");
    return open_.empty();
}

void dialog_registry_impl::add(registered_dialog& dialog) {
    core::check_main_thread("dialog_registry::add");
    open_.push_back(&dialog);
}

void dialog_registry_impl::forget(registered_dialog& dialog) noexcept {
    core::check_main_thread("dialog_registry::forget");
    std::erase(open_, &dialog);
}

void dialog_registry_impl::poke_existing() {
    core::check_main_thread("poke_existing");
    if (!open_.empty()) open_.back()->bring_forward();
}

}  // namespace ostrevan::services
