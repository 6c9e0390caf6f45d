#include "player/services/dialog_registry.h"

namespace ostrevan::services {

void dialog_registry_impl::poke_existing() {
    if (!open_.empty()) open_.back()->bring_forward();
}

}  // namespace ostrevan::services
