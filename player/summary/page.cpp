#include "player/summary/page.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "player/summary/page_style.h"
#include "player/summary/plot.h"
#include "player/summary/wording.h"

namespace ostrevan::summary {
namespace {

constexpr std::array<std::string_view, 12> month_names{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

/// Names keep their own direction of writing.
std::string name_part(std::string_view name) { return "<bdi>" + escaped(name) + "</bdi>"; }

/// A date stays on one line.
std::string unbroken(const std::string& dates) {
    std::string out;
    for (const char each : dates) out += each == '-' ? "\u2011" : std::string(1, each);
    return escaped(out);
}

std::string card(std::string_view kind, std::string_view title, const std::string& content) {
    if (content.empty()) return {};
    return "<section class=\"" + std::string(kind) + "\"><h2>" + escaped(title) + "</h2>" + content + "</section>\n";
}

std::string tile(std::size_t number, std::string_view what) {
    return "<div class=\"tile\"><b>" + grouped(number) + "</b><span class=\"soft\">" + escaped(what) + "</span></div>\n";
}

std::string name_of(const ranked& of) {
    auto text = "<span class=\"name\">" + name_part(of.name);
    if (!of.artist.empty()) text += " <span class=\"soft small\">" + name_part(of.artist) + "</span>";
    return text + "</span>";
}

std::string bar_row(const std::string& name, std::size_t full, std::size_t lighter, std::size_t largest) {
    return "<li><div class=\"row\">" + name + "<span class=\"number\">" + grouped(full + lighter) + "</span></div>" +
           bar_plot(full, lighter, largest) + "</li>";
}

std::string ranking_of(const std::vector<ranked>& rows) {
    std::string out;
    for (const auto& each : rows)
        out += bar_row(name_of(each), each.plays.dated, each.plays.undated, rows.front().plays.all());
    return out.empty() ? out : "<ol>" + out + "</ol>";
}

std::string skips_of(const std::vector<ranked>& rows) {
    std::string out;
    for (const auto& each : rows) out += bar_row(name_of(each), each.skips, 0, rows.front().skips);
    return out.empty() ? out : "<ol>" + out + "</ol>";
}

/// Few months have names; of many, some years have.
std::string months_plot(const figures& of) {
    constexpr std::size_t most_named = 12, most_years = 8;
    const auto years = of.months.size() / 12 + 1;
    const auto step = static_cast<int>((years + most_years - 1) / most_years);
    std::vector<plotted> columns;
    for (const auto& [month, plays] : of.months) {
        const auto number = static_cast<unsigned>(month.month());
        const auto year = static_cast<int>(month.year());
        std::string label;
        if (of.months.size() <= most_named) label = month_names[number - 1];
        else if (number == 1 && year % step == 0) label = std::to_string(year);
        columns.push_back({label, text_of(month), plays});
    }
    if (columns.empty()) return {};
    return column_plot("Plays by month", columns, of.months.size() > most_named);
}

std::string weekdays_plot(const figures& of) {
    std::vector<plotted> columns;
    for (std::size_t day = 0; day < of.weekdays.size(); ++day)
        columns.push_back({std::string(weekday_names[day].substr(0, 3)), std::string(weekday_names[day]), of.weekdays[day]});
    return of.plays.dated == 0 ? std::string() : column_plot("Plays by weekday", columns, false);
}

std::string hours_plot(const figures& of) {
    constexpr std::size_t labelled = 3;
    std::vector<plotted> columns;
    for (std::size_t hour = 0; hour < of.hours.size(); ++hour)
        columns.push_back({hour % labelled == 0 ? std::to_string(hour) : "", std::to_string(hour) + ":00", of.hours[hour]});
    return of.plays.dated == 0 ? std::string() : column_plot("Plays by hour", columns, true);
}

std::string ratings_plot(const figures& of) {
    std::string out;
    const auto largest = *std::max_element(of.ratings.begin() + 1, of.ratings.end());
    for (std::size_t stars = of.ratings.size(); largest != 0 && --stars > 0;) {
        std::string name;
        for (std::size_t i = 0; i < stars; ++i) name += "★";
        out += bar_row("<span class=\"name stars\">" + name + "</span>", of.ratings[stars], 0, largest);
    }
    return out.empty() ? out : "<ul>" + out + "</ul>";
}

std::string rows_of(const track_list& tracks, std::string_view empty, bool has_plays) {
    if (tracks.count == 0) return "<p class=\"soft\">" + escaped(empty) + "</p>";
    std::string out = "<ul>";
    for (std::size_t i = 0; i < tracks.some.size(); ++i) {
        const auto& each = tracks.some[i];
        auto detail = text_of(tracks.days[i]);
        if (has_plays) detail = grouped(each.plays.all()) + " × · " + detail;
        out += "<li><div class=\"row\">" + name_of(each) + "<span class=\"number small\">" + escaped(detail) +
               "</span></div></li>";
    }
    return out + "</ul>";
}

std::string head_of(const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'; img-src "
           "data:\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<link rel=\"icon\" href=\"data:,\">\n<title>" +
           escaped(title) + "</title>\n<style>" + std::string(page_style) + "</style>\n</head>\n";
}

}  // namespace

std::string page_of(const question& wanted, const figures& of) {
    const auto title = title_of(wanted, of);
    auto out = head_of("Listening: " + title) + "<body>\n<main>\n<header>\n<p class=\"soft\">Listening</p>\n<h1>" +
               unbroken(title) + "</h1>\n</header>\n<div class=\"tiles\">\n";
    out += tile(of.plays.all(), "plays") + tile(of.played_tracks, "of " + grouped(of.tracks) + " tracks played") +
           tile(of.skips, "skips") + tile(of.added.count, "tracks new in the library") + "</div>\n";
    for (const auto& each : reservations(of)) out += "<p class=\"soft small\">" + escaped(each) + "</p>\n";
    if (of.plays.undated != 0) out += "<p class=\"soft small\"><span class=\"key\"></span>known only as a number</p>\n";
    out += "<div class=\"cards\">\n";
    out += card("wide", "Plays by month", months_plot(of));
    out += card("", "Plays by weekday", weekdays_plot(of));
    out += card("", "Plays by hour", hours_plot(of));
    out += card("", "Top artists", ranking_of(of.top_artists));
    out += card("", "Top albums", ranking_of(of.top_albums));
    out += card("wide", "Top tracks", ranking_of(of.top_tracks));
    out += card("", title_of_ratings(of), ratings_plot(of));
    out += card("", "Most skipped", skips_of(of.most_skipped));
    out += card("third", title_of_added(wanted, of), rows_of(of.added, "Nothing is new.", false));
    out += card("third", title_of_never_played(of), rows_of(of.never_played, "Everything was played.", false));
    out += card("third", title_of_long_ago(of), rows_of(of.long_ago, "No such track.", true));
    const auto today = std::chrono::floor<std::chrono::days>(query::shown_at(wanted.now));
    return out + "</div>\n<footer class=\"soft small\">Made on " + text_of(std::optional(today)) +
           " by ostrevan. Times are local.</footer>\n</main>\n</body>\n</html>\n";
}

}  // namespace ostrevan::summary
