#include "player/terminal/stats_text.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <string_view>

#include "player/summary/wording.h"
#include "player/system/counted.h"
#include "player/terminal/bar_chart.h"
#include "player/terminal/table.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

using summary::figures;
using summary::ranked;

/// More months than these would be a long list; older ones are shown by year.
constexpr std::size_t most_months = 24;

/// Breaks a sentence between words.
void write_sentence(std::ostream& out, std::string_view text, std::size_t width) {
    while (display_width(text) > width) {
        const auto blank = text.rfind(' ', width);
        if (blank == std::string_view::npos) break;
        out << text.substr(0, blank) << '\n';
        text.remove_prefix(blank + 1);
    }
    out << text << '\n';
}

bar_chart ranking(std::string title, const std::vector<ranked>& rows) {
    bar_chart chart(std::move(title));
    for (const auto& each : rows) chart.add(summary::full_name(each), each.plays.dated, each.plays.undated);
    return chart;
}

bar_chart skips_of(const figures& of) {
    bar_chart chart("Most skipped");
    for (const auto& each : of.most_skipped) chart.add(summary::full_name(each), each.skips);
    return chart;
}

bar_chart years_of(const figures& of) {
    bar_chart chart("Plays by year");
    std::map<std::chrono::year, std::size_t> years;
    for (const auto& [month, plays] : of.months) years[month.year()] += plays;
    for (const auto& [year, plays] : years)
        if (of.months.size() > most_months) chart.add(std::to_string(static_cast<int>(year)), plays);
    return chart;
}

bar_chart months_of(const figures& of) {
    bar_chart chart("Plays by month");
    const auto left_out = of.months.size() - std::min(of.months.size(), most_months);
    for (auto each = of.months.begin() + static_cast<std::ptrdiff_t>(left_out); each != of.months.end(); ++each)
        chart.add(summary::text_of(each->month), each->plays);
    return chart;
}

bar_chart weekdays_of(const figures& of) {
    bar_chart chart("Plays by weekday");
    for (std::size_t day = 0; of.plays.dated != 0 && day < of.weekdays.size(); ++day)
        chart.add(std::string(summary::weekday_names[day]), of.weekdays[day]);
    return chart;
}

bar_chart hours_of(const figures& of) {
    bar_chart chart("Plays by hour");
    for (std::size_t hour = 0; of.plays.dated != 0 && hour < of.hours.size(); ++hour)
        chart.add((hour < 10 ? "0" : "") + std::to_string(hour) + ":00", of.hours[hour]);
    return chart;
}

bar_chart ratings_of(const figures& of) {
    bar_chart chart(summary::title_of_ratings(of));
    for (std::size_t stars = of.ratings.size(); of.tracks != of.ratings[0] && --stars > 0;)
        chart.add(system::counted(stars, "star"), of.ratings[stars]);
    return chart;
}

void write_list(std::ostream& out, std::size_t width, const std::string& title, const summary::track_list& list,
                bool has_plays = false) {
    constexpr std::string_view no_day = "          ";
    out << '\n' << title << '\n';
    for (std::size_t i = 0; i < list.some.size(); ++i) {
        const auto day = summary::text_of(list.days[i]);
        auto line = "  " + (day.empty() ? std::string(no_day) : day) + "  ";
        if (has_plays) line += std::to_string(list.some[i].plays.all()) + "x  ";
        out << shortened(line + shown_in_one_line(summary::full_name(list.some[i])), width) << '\n';
    }
    if (list.count > list.some.size()) out << "  ...\n";
}

}  // namespace

void write_stats(std::ostream& out, const summary::question& wanted, const figures& of, std::size_t width,
                 bool with_blocks) {
    out << summary::title_of(wanted, of) << '\n';
    write_sentence(out, summary::headline(of), width);
    for (const auto& line : summary::reservations(of)) write_sentence(out, line, width);
    if (of.plays.undated != 0)
        write_sentence(out, std::string("The bars show plays without a time as ") + (with_blocks ? "░." : ":::."), width);
    for (const auto& chart :
         {ranking("Top artists", of.top_artists), ranking("Top albums", of.top_albums), ranking("Top tracks", of.top_tracks),
          years_of(of), months_of(of), weekdays_of(of), hours_of(of), skips_of(of), ratings_of(of)}) {
        if (chart.empty()) continue;
        out << '\n';
        chart.write(out, width, with_blocks);
    }
    write_list(out, width, summary::title_of_added(wanted, of), of.added);
    write_list(out, width, summary::title_of_never_played(of), of.never_played);
    write_list(out, width, summary::title_of_long_ago(of), of.long_ago, true);
}

}  // namespace ostrevan::terminal
