// Seeds: fuzz/seeds/tag_values
#include <array>
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "quorvel/platform/time_zone.h"
#include "quorvel/store/file_tags.h"
#include "quorvel/store/timestamp.h"

namespace {

constexpr std::array fields{"play_count",
                            "play_counter",
                            "playback_counter",
                            "first_played_timestamp",
                            "last_played_timestamp",
                            "added_timestamp",
                            "first_played",
                            "last_played",
                            "added",
                            "rating"};
constexpr std::uint64_t second = 10'000'000;

void check_time(std::string_view text) {
    try {
        const auto time = quorvel::ParseTimestamp(text);
        fuzz::check(time % second < second, "a fraction is less than a second");
    } catch (const quorvel::exception_time_error&) {
    }
}

}  // namespace

/// Line by line, the values of the statistics fields in a file's tags.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    ostrevan::file_info_builder info;
    for (const auto* const field : fields) {
        const auto line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        info.meta_add(field, line);
        check_time(line);
    }
    for (const bool fallback : {false, true}) {
        quorvel::t_playback_stats read;
        const auto supplied = quorvel::PCDB_read_tags(read, info.build(), fallback);
        fuzz::check(read.first_played == 0 || read.added <= read.first_played, "nothing is played before it is added");

        ostrevan::file_info_builder written = info;
        quorvel::PCDB_write_tags(read, written);
        quorvel::t_playback_stats again;
        static_cast<void>(quorvel::PCDB_read_tags(again, written.build(), false));
        if ((supplied & quorvel::field_play_count) != 0)
            fuzz::check(again.play_count == read.play_count, "a count that is written is the one that is read");
        fuzz::check(again.last_played == read.last_played, "a time that is written is the one that is read");
    }
    return 0;
}
