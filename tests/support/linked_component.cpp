// For tests that link the component's objects; those that load its library pass the entry themselves.
#include <cstdlib>

#include "tests/support/memory_player.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

namespace support {
#ifdef __unix__
namespace {
/// Five and a half hours ahead of UTC, for tests of times by their texts; elsewhere ctest sets the zone, before the process.
[[maybe_unused]] const int zone_is_set = setenv("TZ", "<+0530>-5:30", 1);
}  // namespace
#endif

memory_player::memory_player() : memory_player(&ostrevan_get_interface, "/usr/lib/ostrevan/components/quorvel.dll") {}

}  // namespace support
