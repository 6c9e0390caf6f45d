#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "player/index/journal.h"
#include "player/query/local_time.h"
#include "player/summary/local_calendar.h"
#include "player/summary/track_facts.h"

namespace ostrevan::summary {

/// Which plays to sum up.
struct question {
    /// Local time. Without any limit, plays known only as a number belong to it as well.
    query::period period{query::local_time::min(), query::local_time::max()};
    std::chrono::sys_seconds now{};
    std::size_t at_most = 10;  ///< names in each list

    [[nodiscard]] bool is_all_time() const noexcept {
        return period.first == query::local_time::min() && period.end == query::local_time::max();
    }
};

/// Plays whose time is known, and those known only as a number.
struct play_sum {
    std::size_t dated = 0;
    std::size_t undated = 0;

    [[nodiscard]] std::size_t all() const noexcept { return dated + undated; }
};

/// An artist, an album or a track.
struct ranked {
    std::string name{};
    std::string artist{};  ///< of an album or a track; may be empty
    play_sum plays{};
    std::size_t skips = 0;
    metadb_handle_ptr track{};  ///< one of its tracks
};

struct month_sum {
    std::chrono::year_month month;
    std::size_t plays = 0;
};

/// Some of the tracks that have something in common.
struct track_list {
    std::size_t count = 0;                                       ///< of all
    std::vector<ranked> some{};                                  ///< the first ones
    std::vector<std::optional<std::chrono::local_days>> days{};  ///< of each: added, or last played
};

/// What summaries show, whatever the front end.
struct figures {
    play_sum plays{};
    std::size_t undated_elsewhere = 0;  ///< left out, since nobody knows whether they are of the period
    std::size_t without_track = 0;      ///< those of the plays whose track is not in the library
    std::size_t skips = 0;
    std::size_t tracks = 0;                                          ///< of the library or the query
    std::size_t played_tracks = 0;                                   ///< of these, in the period
    std::optional<std::chrono::local_days> first_day{}, last_day{};  ///< of the dated plays

    // The most played first; none without plays.
    std::vector<ranked> top_artists{}, top_albums{}, top_tracks{};
    std::vector<ranked> most_skipped{};

    // Of the dated plays, in local time.
    std::vector<month_sum> months{};        ///< from the first to the last play, without gaps
    std::array<std::size_t, 7> weekdays{};  ///< from Monday on
    std::array<std::size_t, 24> hours{};

    // Of the library as it is now.
    track_list added{};                    ///< in the period, or else in the last `recent`; the newest first
    track_list never_played{};             ///< the longest in the library first
    track_list long_ago{};                 ///< last played more than `long_time` ago; the most played first
    std::array<std::size_t, 6> ratings{};  ///< tracks by stars; 0: not rated
};

inline constexpr std::chrono::days recent{30};
inline constexpr std::chrono::days long_time{365};

/// Computes the figures of listens in one pass.
class summary_maker {
public:
    /// The tracks must outlive it. Of listens to other tracks, only the times count, and only if `has_strangers`.
    summary_maker(question wanted, const track_set& tracks, bool has_strangers);

    void hear(const index::brief_listen& heard);
    [[nodiscard]] figures finish() &&;

private:
    struct track_sum {
        std::size_t ever = 0;  // plays with a time, in the period or not
        std::size_t plays = 0, skips = 0;
    };

    [[nodiscard]] bool is_inside(query::local_time time) const;
    void count_times(query::local_time time);
    void add_months();
    void rank();
    void list_tracks();

    const question wanted_;
    const track_set& tracks_;
    const bool has_strangers_;
    local_calendar calendar_;
    std::vector<track_sum> sums_;
    std::vector<std::size_t> by_month_;  // from the year 0
    figures made_;
};

}  // namespace ostrevan::summary
