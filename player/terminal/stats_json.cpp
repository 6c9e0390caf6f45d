#include "player/terminal/stats_json.h"

#include "player/summary/wording.h"
#include "player/terminal/track_json.h"

namespace ostrevan::terminal {
namespace {

using json = nlohmann::ordered_json;
using summary::figures;
using summary::ranked;

json limit_of(query::local_time time, query::local_time none) {
    return time == none ? json() : json(summary::text_of(time));
}

void add_location(json& object, const ranked& row) {
    object["path"] = row.track->location().path;
    object["subsong"] = row.track->location().subsong;
}

/// An artist, an album or a track, as `what` says.
json json_of_ranking(const char* what, const std::vector<ranked>& rows) {
    auto list = json::array();
    for (const auto& each : rows) {
        json object{{what, each.name}};
        if (what != std::string_view("artist")) object["artist"] = text_or_null(each.artist);
        if (what == std::string_view("title")) add_location(object, each);
        object["plays"] = each.plays.all();
        object["dated"] = each.plays.dated;
        object["undated"] = each.plays.undated;
        object["skips"] = each.skips;
        list.push_back(std::move(object));
    }
    return list;
}

json json_of_months(const figures& of) {
    auto list = json::array();
    for (const auto& each : of.months) list.push_back({{"month", summary::text_of(each.month)}, {"plays", each.plays}});
    return list;
}

json json_of_list(const summary::track_list& tracks, const char* day) {
    auto list = json::array();
    for (std::size_t i = 0; i < tracks.some.size(); ++i) {
        const auto& each = tracks.some[i];
        json object{{"title", each.name}, {"artist", text_or_null(each.artist)}};
        add_location(object, each);
        object["plays"] = each.plays.all();
        object[day] = text_or_null(summary::text_of(tracks.days[i]));
        list.push_back(std::move(object));
    }
    return {{"count", tracks.count}, {"tracks", std::move(list)}};
}

}  // namespace

json stats_json(const summary::question& wanted, const figures& of) {
    return {{"from", limit_of(wanted.period.first, query::local_time::min())},
            {"before", limit_of(wanted.period.end, query::local_time::max())},
            {"plays", of.plays.all()},
            {"dated", of.plays.dated},
            {"undated", of.plays.undated},
            {"undated_left_out", of.undated_elsewhere},
            {"not_in_library", of.without_track},
            {"skips", of.skips},
            {"tracks", of.tracks},
            {"played_tracks", of.played_tracks},
            {"first_day", text_or_null(summary::text_of(of.first_day))},
            {"last_day", text_or_null(summary::text_of(of.last_day))},
            {"top_artists", json_of_ranking("artist", of.top_artists)},
            {"top_albums", json_of_ranking("album", of.top_albums)},
            {"top_tracks", json_of_ranking("title", of.top_tracks)},
            {"most_skipped", json_of_ranking("title", of.most_skipped)},
            {"months", json_of_months(of)},
            {"weekdays", of.weekdays},
            {"hours", of.hours},
            {"ratings", of.ratings},
            {"added", json_of_list(of.added, "added")},
            {"never_played", json_of_list(of.never_played, "added")},
            {"long_ago", json_of_list(of.long_ago, "last_played")}};
}

}  // namespace ostrevan::terminal
