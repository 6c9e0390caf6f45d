#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::tags {

/// Two fields that formats keep in one text such as "3/12".
struct number_pair {
    std::string_view number_field;
    std::string_view total_field;
    std::string_view number_key;
    /// The keys for a total in an entry of its own; the first one is written.
    std::string_view total_keys[2];
};
inline constexpr number_pair number_pairs[] = {
    {"tracknumber", "totaltracks", "TRACKNUMBER", {"TRACKTOTAL", "TOTALTRACKS"}},
    {"discnumber", "totaldiscs", "DISCNUMBER", {"DISCTOTAL", "TOTALDISCS"}},
};

/// Statistics fields: gathered from, and edited in, every tag that a file has.
inline constexpr std::string_view statistics_fields[] = {
    "last_played_timestamp", "first_played_timestamp", "added_timestamp", "play_count",
    "play_counter",          "playback_counter",       "rating"};
bool is_statistics_field(std::string_view field) noexcept;

std::string ascii_upper(std::string_view text);
std::string ascii_lower(std::string_view text);

/// The player's name of a tag key: lower-case, spellings of one field brought together ("ALBUM_ARTIST" is "album artist").
std::string field_of_key(std::string_view key);

/// The upper-case keys that hold a field, the one to write first: "album artist" gives "ALBUMARTIST", "ALBUM ARTIST", ...
std::vector<std::string> keys_of_field(std::string_view field);

/// A few APE items have customary names that differ from the keys: "Year" is DATE.
std::string key_of_ape_item(std::string_view item);
std::string ape_item_of_key(std::string_view key);

/// The pair a field is one half of, or null.
const number_pair* pair_of_field(std::string_view field) noexcept;

}  // namespace ostrevan::tags
