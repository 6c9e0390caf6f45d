// A component with the handshake that the build defines.
#include "ostrevan/component.h"

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(
    const ostrevan::player_interface* /*player*/) {
    static ostrevan::component_interface answer{.magic = MAGIC, .version = ostrevan::interface_version + VERSION};
    return MAGIC == 0 ? nullptr : &answer;
}
