// For tests that link the component's objects; those that load its library hand over the entry themselves.
#include "tests/support/memory_player.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

namespace support {

memory_player::memory_player() : memory_player(&ostrevan_get_interface, "/usr/lib/ostrevan/components/quorvel.dll") {}

}  // namespace support
