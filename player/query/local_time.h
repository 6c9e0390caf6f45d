#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ostrevan::query {

/// A moment as a clock on the wall shows it, in the form in which fields show times. Only such moments are compared with
/// each other, so no time zone is involved.
using local_time = std::chrono::local_seconds;

/// From `first` up to, and without, `end`.
struct period {
    local_time first;
    local_time end;
};

/// Reads `YYYY`, `YYYY-MM`, `YYYY-MM-DD`, each unit further after a blank or "T": `HH`, `HH:MM`, `HH:MM:SS`. A shorter text
/// is a longer period: "2024-05" is all of May. Empty for anything else and for dates that do not exist.
[[nodiscard]] std::optional<period> parse_period(std::string_view text) noexcept;

/// `seconds` or, for units that differ in length, `months`.
struct time_unit {
    std::int64_t seconds = 0;
    std::int64_t months = 0;
};

/// By the calendar, where a day that the month lacks becomes its last day. Never before the year 0.
[[nodiscard]] local_time months_before(local_time moment, std::int64_t count) noexcept;

/// The largest number of units that a query may count back.
inline constexpr std::int64_t max_units = 1'000'000;

}  // namespace ostrevan::query
