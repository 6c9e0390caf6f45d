#include "ostrevan/dialog.h"

#include "ostrevan/core_api.h"
#include "ostrevan/file_dialog.h"

namespace ostrevan {

bool ModalDialog_CanCreateNew() noexcept {
    const auto registry = find_service<dialog_registry>();
    return !registry || registry->can_create_new();
}

void ModalDialog_PokeExisting() {
    if (const auto registry = find_service<dialog_registry>()) registry->poke_existing();
}

std::optional<std::string> uGetOpenFileName(const file_dialog_service::query_t& query) {
    return get_service<file_dialog_service>()->ask(query);
}

}  // namespace ostrevan
