#pragma once

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "player/summary/figures.h"

namespace ostrevan::summary {

inline constexpr std::array<std::string_view, 7> weekday_names{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                               "Friday", "Saturday", "Sunday"};

/// "Artist - Title", or only the name.
std::string full_name(const ranked& of);
/// "2026-03".
std::string text_of(std::chrono::year_month month);
/// "2026-03-01", or nothing.
std::string text_of(const std::optional<std::chrono::local_days>& day);
/// "2026-03-01", with a time of day unless it is midnight.
std::string text_of(query::local_time time);

/// What the period is, such as "2026-01-01 to 2026-03-31".
std::string title_of(const question& wanted, const figures& of);
/// The sums, in one sentence.
std::string headline(const figures& of);
/// What is not known of the plays: sentences, often none.
std::vector<std::string> reservations(const figures& of);

/// The title of each list of tracks, its number included.
std::string title_of_added(const question& wanted, const figures& of);
std::string title_of_never_played(const figures& of);
std::string title_of_long_ago(const figures& of);
std::string title_of_ratings(const figures& of);

}  // namespace ostrevan::summary
