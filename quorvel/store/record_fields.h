#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "quorvel/store/record.h"

namespace quorvel {

/// Fields of a record, as bits of a set: those to export or import, and those that file tags supply.
enum ExportFields : std::uint32_t {
    field_play_count = 1,
    field_first_played = 2,
    field_last_played = 4,
    field_added = 8,
    field_rating = 16,
    all_fields = 31,
};

/// A field of the record and its names elsewhere.
struct record_field {
    ExportFields bit;
    std::uint64_t t_playback_stats::*value;  ///< null for the rating, which has 32 bits
    std::string_view attribute;              ///< in a statistics file
    const char* tag;                         ///< in file tags
    const char* text_tag;                    ///< in file tags, a time as text: read, but never written or removed
    const char* label;                       ///< in dialogs
};

/// Every field, in the order of the bits.
inline constexpr std::array record_fields{
    record_field{field_play_count, &t_playback_stats::play_count, "Count", "play_count", nullptr, "Times played"},
    record_field{field_first_played, &t_playback_stats::first_played, "FirstPlayed", "first_played_timestamp",
                 "first_played", "First played time"},
    record_field{field_last_played, &t_playback_stats::last_played, "LastPlayed", "last_played_timestamp", "last_played",
                 "Last played time"},
    record_field{field_added, &t_playback_stats::added, "Added", "added_timestamp", "added", "Added time"},
    record_field{field_rating, nullptr, "Rating", "rating", nullptr, "Rating"},
};
/// Those of 64 bits: all but the rating.
inline constexpr auto value_fields = std::span(record_fields).first<4>();

[[nodiscard]] constexpr const record_field& field_of(ExportFields bit) noexcept {
    return record_fields[static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(bit)))];
}

/// Replaces the fields of a set and leaves the others as they are.
inline void copy_fields(t_playback_stats& to, const t_playback_stats& from, std::uint32_t fields) noexcept {
    for (const auto& field : value_fields)
        if ((fields & field.bit) != 0) to.*field.value = from.*field.value;
    if ((fields & field_rating) != 0) to.rating = from.rating;
}

}  // namespace quorvel
