// Asks the component for its field, in the player in memory that comes with the SDK.
#include <cstdio>
#include <string>

#include "ostrevan/field_provider.h"
#include "ostrevan_test/memory_player.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

namespace {

class kept_text : public ostrevan::titleformat_text_out {
public:
    std::string text;
    void write(const nuv::guid& /*kind*/, const char* more, std::size_t length) override {
        text += length == whole_text ? std::string(more) : std::string(more, length);
    }
};

}  // namespace

int main() {
    ostrevan_test::memory_player player(&ostrevan_get_interface);
    player.start();
    auto& fields = player.component_service<ostrevan::field_provider>();

    struct row {
        const char* name;
        const char* value;
        const char* expected;
    };
    int failures = 0;
    for (const row& tried : {row{"genre", "Metal", "loud"}, row{"genre", "Folk", "quiet"}, row{"title", "Metal", "?"}}) {
        const auto track = ostrevan_test::make_track("/music/a.flac", {{tried.name, tried.value}});
        kept_text out;
        if (!fields.process_field(0, track.get(), out)) out.text = "?";
        if (out.text == tried.expected) continue;
        std::printf("%%loudness%% is '%s' and not '%s'\n", out.text.c_str(), tried.expected);
        ++failures;
    }
    return failures;
}
