// Links: player_tags
// Sources: player/library/cue_sheet.cpp player/library/cue_text.cpp
// Seeds: fuzz/seeds/cue_sheet
#include <cmath>
#include <cstdint>
#include <set>
#include <string_view>

#include "fuzz/check.h"
#include "player/library/cue_sheet.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ostrevan::library;
    try {
        const auto sheet = parse_cue({reinterpret_cast<const char*>(data), size});
        std::set<std::uint32_t> numbers;
        for (const auto& track : sheet.tracks) {
            fuzz::check(numbers.insert(track.number).second, "a number occurs once");
            fuzz::check(track.file < sheet.files.size(), "every track has a file");
            fuzz::check(std::isfinite(track.start) && track.start >= 0, "a track starts somewhere");
            fuzz::check(!track.end || *track.end >= track.start, "times do not run backwards");
        }
    } catch (const cue_error&) {
    }
    return 0;
}
