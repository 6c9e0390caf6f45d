#pragma once

#include <algorithm>

#include "quorvel/store/record.h"

namespace quorvel {

/// Plays a day between the first and the last play; 0 if that is unknown. The first play does not count, and a short span
/// never gives more plays a day than there were plays.
[[nodiscard]] inline double played_per_day(const t_playback_stats& record) noexcept {
    if (record.first_played == 0 || record.last_played == 0 || record.play_count == 0) return 0;
    const double seconds = static_cast<double>(record.last_played) * 1e-7 - static_cast<double>(record.first_played) * 1e-7;
    if (!(seconds > 0)) return 0;
    return std::min(static_cast<double>(record.play_count),
                    static_cast<double>(record.play_count - 1) * (86400.0 / seconds));
}

}  // namespace quorvel
