#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ostrevan::query {

/// A wall-clock time, as fields show it.
using local_time = std::chrono::local_seconds;

/// What a clock on the wall shows at `moment`, in the system's time zone.
[[nodiscard]] local_time shown_at(std::chrono::sys_seconds moment) noexcept;

/// From `first` to before `end`.
struct period {
    local_time first;
    local_time end;
};

/// Reads `YYYY`, `YYYY-MM` or `YYYY-MM-DD`, the last optionally with `HH`, `HH:MM` or `HH:MM:SS` after a blank or "T". A
/// shorter text is a longer period: "2024-05" is all of May. Empty for other forms and for dates that do not exist.
[[nodiscard]] std::optional<period> parse_period(std::string_view text) noexcept;

/// `months` for units that differ in length, else `seconds`.
struct time_unit {
    std::int64_t seconds = 0;
    std::int64_t months = 0;
};

/// Calendar months earlier; a day missing in the month becomes its last day. Never before the year 0.
[[nodiscard]] local_time months_before(local_time moment, std::int64_t count) noexcept;

/// The most units that a query may count back.
inline constexpr std::int64_t max_units = 1'000'000;

}  // namespace ostrevan::query
