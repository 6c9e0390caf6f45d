#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "player/query/local_time.h"

namespace ostrevan::query {

/// The moment that `DURING LAST` counts back from, as a clock on the wall shows it. One clock serves a whole search, so that
/// all tracks are judged alike. Immutable.
class query_clock {
public:
    /// A clock that nobody ever sets forward or back, from `YYYY-MM-DD HH:MM:SS`; throws `std::invalid_argument` for another
    /// form.
    [[nodiscard]] static query_clock at(std::string_view text);
    /// The clock of the system's time zone at a moment.
    [[nodiscard]] static query_clock local_at(std::chrono::sys_seconds moment);

    [[nodiscard]] local_time now() const noexcept { return now_; }
    /// What it showed so many seconds ago.
    [[nodiscard]] local_time ago(std::int64_t seconds) const;
    /// The latest that it has shown up to now: more than `now` for a while after it was set back.
    [[nodiscard]] local_time latest() const noexcept { return latest_; }

private:
    query_clock(local_time now, local_time latest, std::optional<std::chrono::sys_seconds> moment) noexcept
        : now_(now), latest_(latest), moment_(moment) {}

    local_time now_;
    local_time latest_;
    std::optional<std::chrono::sys_seconds> moment_;
};

}  // namespace ostrevan::query
