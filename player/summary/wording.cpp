#include "player/summary/wording.h"

#include <cstdio>
#include "player/system/counted.h"

namespace ostrevan::summary {
namespace {

using namespace std::chrono;
using system::counted;

std::string padded(int number, int digits) {
    std::array<char, 16> text{};
    return {text.data(), static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%0*d", digits, number))};
}

std::string text_of_day(local_days day) {
    const year_month_day date{day};
    return summary::text_of(date.year() / date.month()) + "-" +
           padded(static_cast<int>(static_cast<unsigned>(date.day())), 2);
}

}  // namespace

std::string full_name(const ranked& of) { return of.artist.empty() ? of.name : of.artist + " - " + of.name; }

std::string text_of(year_month month) {
    return padded(static_cast<int>(month.year()), 4) + "-" +
           padded(static_cast<int>(static_cast<unsigned>(month.month())), 2);
}

std::string text_of(const std::optional<local_days>& day) { return day ? text_of_day(*day) : std::string(); }

std::string text_of(query::local_time time) {
    const auto day = floor<days>(time);
    if (time == day) return text_of_day(day);
    const hh_mm_ss clock{time - day};
    const auto two = [](auto part) { return padded(static_cast<int>(part.count()), 2); };
    return text_of_day(day) + " " + two(clock.hours()) + ":" + two(clock.minutes()) + ":" + two(clock.seconds());
}

std::string title_of(const question& wanted, const figures& of) {
    const auto& [first, end] = wanted.period;
    if (wanted.is_all_time()) return of.first_day ? text_of(of.first_day) + " to " + text_of(of.last_day) : "All time";
    // The end is exclusive.
    const auto last = end == floor<days>(end) ? end - days{1} : end;
    if (first == query::local_time::min()) return "Until " + text_of(last);
    if (end == query::local_time::max()) return "Since " + text_of(first);
    return text_of(first) == text_of(last) ? text_of(first) : text_of(first) + " to " + text_of(last);
}

std::string headline(const figures& of) {
    return counted(of.plays.all(), "play") + ", " + counted(of.skips, "skip") + ", " + std::to_string(of.played_tracks) +
           " of " + counted(of.tracks, "track") + " played.";
}

std::vector<std::string> reservations(const figures& of) {
    std::vector<std::string> lines;
    const auto known_as_number = [](std::size_t number) {
        return counted(number, "play") + (number == 1 ? " is" : " are") + " known only as a number";
    };
    if (of.plays.undated != 0)
        lines.push_back("Of these, " + known_as_number(of.plays.undated) +
                        (of.plays.undated == 1 ? ", without its time: it belongs to no month, weekday or hour."
                                               : ", without their times: they belong to no month, weekday or hour."));
    if (of.undated_elsewhere != 0)
        lines.push_back(known_as_number(of.undated_elsewhere) + ", without a time, and left out.");
    if (of.without_track != 0)
        lines.push_back("Of these, " + counted(of.without_track, "play") + (of.without_track == 1 ? " is" : " are") +
                        " of tracks that are not in the library.");
    return lines;
}

std::string title_of_added(const question& wanted, const figures& of) {
    const auto number = ": " + std::to_string(of.added.count);
    if (!wanted.is_all_time()) return "New in the library in this time" + number;
    return "New in the library in the last " + std::to_string(recent.count()) + " days" + number;
}

std::string title_of_never_played(const figures& of) { return "Never played: " + std::to_string(of.never_played.count); }

std::string title_of_long_ago(const figures& of) { return "Not played for a year: " + std::to_string(of.long_ago.count); }

std::string title_of_ratings(const figures& of) {
    return "Ratings: " + std::to_string(of.tracks - of.ratings[0]) + ", " + std::to_string(of.ratings[0]) + " not rated";
}

}  // namespace ostrevan::summary
