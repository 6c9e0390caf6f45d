#include "quorvel/store/file_tags.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "quorvel/store/timestamp.h"

namespace quorvel {
namespace {

using ostrevan::file_info;

struct time_field {
    std::uint64_t t_playback_stats::*value;
    const char* timestamp_name;
    const char* text_name;  ///< never written or removed
    tag_field bit;
};
/// In the order in which they are written and read.
constexpr std::array time_fields{
    time_field{&t_playback_stats::last_played, "last_played_timestamp", "last_played", tag_field_last_played},
    time_field{&t_playback_stats::first_played, "first_played_timestamp", "first_played", tag_field_first_played},
    time_field{&t_playback_stats::added, "added_timestamp", "added", tag_field_added},
};
/// In order of precedence. Only the first is written.
constexpr std::array play_count_names{"play_count", "play_counter", "playback_counter"};
constexpr const char* rating_name = "rating";

void set_number(file_info& info, const char* name, std::uint64_t number) {
    std::array<char, 20> digits;
    const auto* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    info.meta_set(name, {digits.data(), end});
}

/// Null when the field is absent or has no values.
const std::string* first_value(const file_info& info, std::string_view name) noexcept {
    const auto index = info.meta_find(name);
    return index == file_info::npos || info.meta_value_count(index) == 0 ? nullptr : &info.meta_value(index, 0);
}

/// Nobody plays a track before it is there or for the last time before the first.
void repair(t_playback_stats& record) noexcept {
    if (record.first_played == 0) record.first_played = record.last_played;
    if (record.first_played != 0 && (record.added == 0 || record.added > record.first_played))
        record.added = record.first_played;
}

}  // namespace

void PCDB_write_tags(const t_playback_stats& record, file_info& info) {
    for (const auto& field : time_fields) {
        if (const std::uint64_t time = record.*field.value; time != 0) set_number(info, field.timestamp_name, time);
        else info.meta_remove_field(field.timestamp_name);
    }
    for (const char* name : play_count_names) info.meta_remove_field(name);
    if (record.play_count != 0) set_number(info, play_count_names.front(), record.play_count);

    if (record.rating == rating_not_set) info.meta_remove_field(rating_name);
    else set_number(info, rating_name, stars_of_wrapping(record.rating));
}

std::uint32_t PCDB_read_tags(t_playback_stats& record, const file_info& info, bool allowTextFallback) {
    record = {};
    for (const auto& field : time_fields)
        record.*field.value = read_time_field(info, field.timestamp_name, field.text_name, allowTextFallback);
    repair(record);

    std::uint32_t present = 0;
    for (const auto& field : time_fields)
        if (record.*field.value != 0) present |= field.bit;

    for (const char* name : play_count_names) {
        const auto* text = first_value(info, name);
        if (text == nullptr) continue;
        record.play_count = parse_trailing_digits(*text);
        present |= tag_field_play_count;
        break;
    }
    if (const auto* text = first_value(info, rating_name)) {
        record.rating =
            rating_of_stars(static_cast<std::uint32_t>(std::min<std::uint64_t>(parse_trailing_digits(*text), 5)));
        present |= tag_field_rating;
    }
    return present;
}

std::uint64_t parse_trailing_digits(std::string_view text) noexcept {
    std::uint64_t number = 0;
    for (const char c : text) number = c >= '0' && c <= '9' ? number * 10 + static_cast<std::uint64_t>(c - '0') : 0;
    return number;
}

std::uint64_t read_time_field(const file_info& info, std::string_view timestamp_field, std::string_view text_field,
                              bool allowTextFallback) {
    if (const auto* digits = first_value(info, timestamp_field))
        if (const std::uint64_t time = parse_trailing_digits(*digits); time != 0) return time;
    const auto* text = allowTextFallback ? first_value(info, text_field) : nullptr;
    if (text == nullptr) return 0;
    try {
        return ParseTimestamp(*text);
    } catch (const exception_time_error&) {
        return 0;
    }
}

}  // namespace quorvel
