#include "player/mpris/shown_state.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "player/mpris/words.h"

namespace ostrevan::mpris {
namespace {

constexpr double most_stars = 5;

enum class form { text, list, number, stars, time };

struct told_field {
    const char* name;
    const char* field;
    form written;
};
/// The last ones come from components, if one has them.
constexpr told_field told_fields[] = {
    {"xesam:title", "title", form::text},
    {"xesam:artist", "artist", form::list},
    {"xesam:album", "album", form::text},
    {"xesam:albumArtist", "album artist", form::list},
    {"xesam:genre", "genre", form::list},
    {"xesam:trackNumber", "tracknumber", form::number},
    {"xesam:discNumber", "discnumber", form::number},
    {"xesam:userRating", "rating", form::stars},
    {"xesam:useCount", "play_count", form::number},
    {"xesam:firstUsed", "first_played", form::time},
    {"xesam:lastUsed", "last_played", form::time},
};

/// Of the number at the beginning, such as that in "3/12"; nothing when there is none.
bus::value written_number(std::string_view text, bool is_stars) {
    std::int32_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc()) return {};
    return is_stars ? bus::value(number / most_stars) : bus::value(number);
}

bus::value written(form as, std::string text) {
    switch (as) {
        case form::text:
            return text;
        case form::list:
            return std::vector<bus::value>{text};
        case form::number:
        case form::stars:
            return written_number(text, as == form::stars);
        case form::time:
            if (const auto blank = text.find(' '); blank != std::string::npos) text[blank] = 'T';
            return text;
    }
    return {};
}

/// A `file:` address.
std::string address_of(std::string_view path) {
    constexpr std::string_view plain = "-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address = "file://";
    for (const char each : path) {
        const auto byte = static_cast<unsigned char>(each);
        const bool is_plain = (byte >= '0' && byte <= '9') || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') ||
                              plain.find(each) != std::string_view::npos;
        if (is_plain) address += each;
        else address += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return address;
}

bus::dictionary metadata_of(const app::now_playing& now, const std::string& id,
                            const titleformat::component_fields& fields) {
    bus::dictionary metadata{{"mpris:trackid", bus::object_path{id}}, {"xesam:url", address_of(now.track->location().path)}};
    if (now.duration > 0) metadata["mpris:length"] = static_cast<std::int64_t>(now.duration * microseconds);
    const titleformat::track_fields source(fields, *now.track);
    for (const auto& [name, field, as] : told_fields) {
        std::string text;
        const bool is_found = source.field(field, text);
        if (!is_found && as != form::number) continue;  // a count of 0 is told
        if (auto value = written(as, std::move(text)); !std::holds_alternative<std::monostate>(value))
            metadata[name] = std::move(value);
    }
    return metadata;
}

}  // namespace

shown_state state_of(const app::now_playing& now, const playback::play_status& status,
                     const titleformat::component_fields& fields) {
    auto order = status.order;
    const auto& modes = order.modes();
    const auto id = "/ostrevan/turn/" + std::to_string(order.current());
    return {.properties = {{"PlaybackStatus", std::string(status.is_paused ? "Paused" : "Playing")},
                           {"LoopStatus", std::string(loop_words[static_cast<std::size_t>(modes.repeat)])},
                           {"Shuffle", modes.shuffle != playback::shuffle_mode::off},
                           {"Volume", status.volume / 100},
                           {"CanGoNext", order.after(order.current()).has_value()},
                           {"CanGoPrevious", order.before(order.current()).has_value()},
                           {"Metadata", metadata_of(now, id, fields)}},
            .track_id = id,
            .position = now.position,
            .length = now.duration,
            .is_playing = !status.is_paused,
            .time = shown_state::clock::now()};
}

}  // namespace ostrevan::mpris
