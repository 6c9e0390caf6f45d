#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

#include "player/query/local_time.h"

namespace ostrevan::query {

/// The moment from which `DURING LAST` counts back, as wall-clock time. One clock serves a whole search, so that all tracks
/// are judged alike. Immutable.
class query_clock {
public:
    /// A clock without changes of the offset, from `YYYY-MM-DD HH:MM:SS`; throws `std::invalid_argument` for another form.
    [[nodiscard]] static query_clock at(std::string_view text);
    /// The clock of the system's time zone at `moment`.
    [[nodiscard]] static query_clock local_at(std::chrono::sys_seconds moment);

    [[nodiscard]] local_time now() const noexcept { return now_; }
    /// The wall-clock time `seconds` ago.
    [[nodiscard]] local_time ago(std::int64_t seconds) const;
    /// The latest time shown up to now: later than `now` for a while after the clock was set back.
    [[nodiscard]] local_time latest() const noexcept { return latest_; }

private:
    query_clock(local_time now, local_time latest, std::optional<std::chrono::sys_seconds> moment) noexcept
        : now_(now), latest_(latest), moment_(moment) {}

    local_time now_;
    local_time latest_;
    std::optional<std::chrono::sys_seconds> moment_;
};

}  // namespace ostrevan::query
