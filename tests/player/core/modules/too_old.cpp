#include "ostrevan/component.h"

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(
    const ostrevan::player_interface* /*player*/) {
    static ostrevan::component_interface answer{ostrevan::component_magic, ostrevan::interface_version - 1, nullptr};
    return &answer;
}
