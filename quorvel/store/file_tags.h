#pragma once

#include <cstdint>
#include <string_view>

#include "ostrevan/file_info.h"
#include "quorvel/store/record.h"

namespace quorvel {

/// Fields of a record, as bits of a mask.
enum tag_field : std::uint32_t {
    tag_field_play_count = 1,
    tag_field_first_played = 2,
    tag_field_last_played = 4,
    tag_field_added = 8,
    tag_field_rating = 16,
};

/// Makes the tags say what the record says: fields of values that are not set are removed. The play count goes to
/// "play_count" alone, whatever field held it before. Times as text ("last_played", ...) are left as they are.
/// [any-thread]
void PCDB_write_tags(const t_playback_stats& record, ostrevan::file_info& info);

/// Fills the record from the tags and answers which `tag_field`s they supply. A missing first play is taken from the last
/// one, and the date added is never later than the first play. `allowTextFallback`: times as text count where the time value
/// is missing. [any-thread]
std::uint32_t PCDB_read_tags(t_playback_stats& record, const ostrevan::file_info& info, bool allowTextFallback);

/// The number made by the last digits of a text when nothing follows them, else 0: "12x34" gives 34, "3 " gives 0. Wraps at
/// 64 bits.
[[nodiscard]] std::uint64_t parse_trailing_digits(std::string_view text) noexcept;

/// The time value in `timestamp_field`; where it is missing or 0, and `allowTextFallback` is set, the local time written in
/// `text_field`. 0 when neither can be read.
[[nodiscard]] std::uint64_t read_time_field(const ostrevan::file_info& info, std::string_view timestamp_field,
                                            std::string_view text_field, bool allowTextFallback);

}  // namespace quorvel
