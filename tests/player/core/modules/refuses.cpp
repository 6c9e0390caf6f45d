#include "ostrevan/component.h"

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(
    const ostrevan::player_interface* /*player*/) {
    return nullptr;
}
