#include "quorvel/store/file_tags.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "quorvel/store/timestamp.h"

namespace quorvel {
namespace {

using ostrevan::file_info;
using ostrevan::file_info_builder;

/// In the order in which they are written.
constexpr std::array time_fields{field_of(field_last_played), field_of(field_first_played), field_of(field_added)};
/// In order of precedence. Only the first is written.
constexpr std::array play_count_tags{field_of(field_play_count).tag, "play_counter", "playback_counter"};
constexpr const char* rating_tag = field_of(field_rating).tag;

void set_number(file_info_builder& info, const char* name, std::uint64_t number) {
    std::array<char, 20> digits;
    const auto* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    info.meta_set(name, {digits.data(), end});
}

/// Empty when the field is absent or has no values.
std::optional<std::string_view> first_value(const file_info& info, std::string_view name) noexcept {
    const auto index = info.meta_find(name);
    return index == file_info::npos || info.meta_value_count(index) == 0 ? std::nullopt
                                                                         : std::optional(info.meta_value(index, 0));
}

}  // namespace

void PCDB_write_tags(const t_playback_stats& record, file_info_builder& info) {
    for (const auto& field : time_fields) {
        if (const std::uint64_t time = record.*field.value; time != 0) set_number(info, field.tag, time);
        else info.meta_remove_field(field.tag);
    }
    for (const char* name : play_count_tags) info.meta_remove_field(name);
    if (record.play_count != 0) set_number(info, play_count_tags.front(), record.play_count);

    if (record.rating == rating_not_set) info.meta_remove_field(rating_tag);
    else set_number(info, rating_tag, stars_of_wrapping(record.rating));
}

std::uint32_t PCDB_read_tags(t_playback_stats& record, const file_info& info, bool allowTextFallback) {
    record = {};
    for (const auto& field : time_fields)
        record.*field.value = read_time_field(info, field.tag, field.text_tag, allowTextFallback);
    if (record.first_played == 0) record.first_played = record.last_played;
    limit_date_added(record);

    std::uint32_t present = 0;
    for (const auto& field : time_fields)
        if (record.*field.value != 0) present |= field.bit;

    for (const char* name : play_count_tags) {
        const auto text = first_value(info, name);
        if (!text) continue;
        record.play_count = parse_trailing_digits(*text);
        present |= field_play_count;
        break;
    }
    if (const auto text = first_value(info, rating_tag)) {
        record.rating =
            rating_of_stars(static_cast<std::uint32_t>(std::min<std::uint64_t>(parse_trailing_digits(*text), 5)));
        present |= field_rating;
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
    if (const auto digits = first_value(info, timestamp_field))
        if (const std::uint64_t time = parse_trailing_digits(*digits); time != 0) return time;
    const auto text = allowTextFallback ? first_value(info, text_field) : std::nullopt;
    if (!text) return 0;
    try {
        return ParseTimestamp(*text);
    } catch (const exception_time_error&) {
        return 0;
    }
}

}  // namespace quorvel
