#include "ostrevan/component.h"

/// The module's only exported symbol. [main-thread]
extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player) {
    return ostrevan::component_entry(player);
}
