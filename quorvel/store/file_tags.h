#pragma once

#include <cstdint>
#include <string_view>

#include "ostrevan/file_info_builder.h"
#include "quorvel/store/record_fields.h"

namespace quorvel {

/// Writes the record into the tags and removes the tags of fields that are not set. The play count is written to
/// "play_count" alone, whichever tag held it before. Times as text ("last_played", ...) are left as they are.
/// [any-thread]
void PCDB_write_tags(const t_playback_stats& record, ostrevan::file_info_builder& info);

/// Fills the record from the tags and returns the set of `ExportFields` that they supply. A missing first play is taken from
/// the last one, and the date added is never later than the first play. With `allowTextFallback` a time as text is read
/// where the time value is missing. [any-thread]
std::uint32_t PCDB_read_tags(t_playback_stats& record, const ostrevan::file_info& info, bool allowTextFallback);

/// The number at the end of a text, 0 if there is none: "12x34" gives 34, "3 " gives 0. Wraps at 64 bits.
[[nodiscard]] std::uint64_t parse_trailing_digits(std::string_view text) noexcept;

/// The time value in `timestamp_field`. If that is missing or 0, and `allowTextFallback` is set, the local time in
/// `text_field`. 0 if neither can be read.
[[nodiscard]] std::uint64_t read_time_field(const ostrevan::file_info& info, std::string_view timestamp_field,
                                            std::string_view text_field, bool allowTextFallback);

}  // namespace quorvel
