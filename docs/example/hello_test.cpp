// Asks the component for its field, in the player in memory that comes with the SDK.
#include <cstdio>
#include <string>

#include "ostrevan_test/memory_player.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

int main() {
    ostrevan_test::memory_player player(&ostrevan_get_interface);
    player.start();

    struct row {
        const char* name;
        const char* value;
        const char* expected;
    };
    int failures = 0;
    for (const row& tried : {row{"genre", "Metal", "loud"}, row{"genre", "Folk", "quiet"}, row{"title", "Metal", ""}}) {
        const auto track = ostrevan_test::make_track("/music/a.flac", {{tried.name, tried.value}});
        const auto text = player.titleformat.format(*track, "%loudness%");
        if (text == tried.expected) continue;
        std::printf("%%loudness%% is '%s' and not '%s'\n", text.c_str(), tried.expected);
        ++failures;
    }
    return failures;
}
