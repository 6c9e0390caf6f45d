#include "player/summary/figures.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace ostrevan::summary {
namespace {

using namespace std::chrono;

constexpr std::size_t months_of_year = 12;
/// A clock that is wrong by more is not worth a plot of empty months.
constexpr local_days earliest{year{1970} / January / 1};
constexpr local_days latest{year{2200} / January / 1};

ranked named(const track_facts& facts) { return {.name = facts.title, .artist = facts.artist, .track = facts.track}; }

/// The largest first, then by name. Those without any are left out.
void keep_largest(std::vector<ranked>& all, std::size_t at_most, const std::function<std::size_t(const ranked&)>& size) {
    std::erase_if(all, [&](const ranked& each) { return size(each) == 0; });
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(std::min(at_most, all.size()));
    std::partial_sort(all.begin(), end, all.end(), [&](const ranked& one, const ranked& other) {
        if (const auto first = size(one), second = size(other); first != second) return first > second;
        return std::tie(one.name, one.artist) < std::tie(other.name, other.artist);
    });
    all.erase(end, all.end());
}

std::size_t plays_of(const ranked& each) { return each.plays.all(); }

/// Adds up the sums of tracks under a common name.
class grouping {
public:
    void add(std::string_view group, const ranked& as) {
        const auto [found, is_new] = places_.try_emplace(std::string(group), groups_.size());
        if (is_new) groups_.push_back(ranked{.name = as.name, .artist = as.artist, .track = as.track});
        auto& sum = groups_[found->second];
        sum.plays.dated += as.plays.dated;
        sum.plays.undated += as.plays.undated;
        sum.skips += as.skips;
        if (sum.artist != as.artist) sum.artist.clear();  // a compilation
    }
    std::vector<ranked> largest(std::size_t at_most) && {
        keep_largest(groups_, at_most, plays_of);
        return std::move(groups_);
    }

private:
    std::unordered_map<std::string, std::size_t> places_;
    std::vector<ranked> groups_;
};

/// A track with what a list is sorted by: the smallest value first, then by location.
struct candidate {
    std::int64_t order;
    const track_facts* facts;
    std::optional<sys_seconds> time;
};

track_list list_of(std::vector<candidate> all, std::size_t at_most) {
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(std::min(at_most, all.size()));
    std::partial_sort(all.begin(), end, all.end(), [](const candidate& one, const candidate& other) {
        return std::tie(one.order, one.facts->track->location()) < std::tie(other.order, other.facts->track->location());
    });
    track_list made{.count = all.size()};
    for (auto each = all.begin(); each != end; ++each) {
        made.some.push_back(named(*each->facts));
        made.some.back().plays.undated = each->facts->plays;
        made.days.push_back(each->time ? std::optional(floor<days>(query::shown_at(*each->time))) : std::nullopt);
    }
    return made;
}

}  // namespace

summary_maker::summary_maker(question wanted, const track_set& tracks, bool has_strangers)
    : wanted_(wanted), tracks_(tracks), has_strangers_(has_strangers), sums_(tracks.facts().size()) {}

bool summary_maker::is_inside(query::local_time time) const {
    return time >= wanted_.period.first && time < wanted_.period.end;
}

void summary_maker::hear(const index::brief_listen& heard) {
    const auto place = tracks_.find(heard.key, heard.path, heard.subsong);
    if (!place && !has_strangers_) return;
    auto* const sum = place ? &sums_[*place] : nullptr;
    const auto time = calendar_.at(sys_seconds{seconds{heard.time}});
    if (sum != nullptr && heard.is_counted) ++sum->ever;
    if (!is_inside(time)) return;
    if (sum != nullptr) ++(heard.is_counted ? sum->plays : sum->skips);
    if (!heard.is_counted) {
        ++made_.skips;
        return;
    }
    ++made_.plays.dated;
    if (sum == nullptr) ++made_.without_track;
    count_times(time);
}

void summary_maker::count_times(query::local_time time) {
    const auto day = floor<days>(time);
    ++made_.weekdays[weekday{day}.iso_encoding() - 1];
    ++made_.hours[static_cast<std::size_t>(floor<hours>(time - day).count())];
    if (day < earliest || day >= latest) return;
    made_.first_day = std::min(made_.first_day.value_or(day), day);
    made_.last_day = std::max(made_.last_day.value_or(day), day);
    const year_month_day date{day};
    const auto month =
        static_cast<std::size_t>(static_cast<int>(date.year())) * months_of_year + static_cast<unsigned>(date.month()) - 1;
    if (month >= by_month_.size()) by_month_.resize(month + 1);
    ++by_month_[month];
}

void summary_maker::add_months() {
    if (!made_.first_day) return;
    const auto month_of = [](local_days day) {
        const year_month_day date{day};
        return date.year() / date.month();
    };
    for (auto month = month_of(*made_.first_day); month <= month_of(*made_.last_day); month += months{1}) {
        const auto place = static_cast<std::size_t>(static_cast<int>(month.year())) * months_of_year +
                           static_cast<unsigned>(month.month()) - 1;
        made_.months.push_back({month, by_month_[place]});
    }
}

void summary_maker::rank() {
    grouping artists, albums;
    for (std::size_t place = 0; place < sums_.size(); ++place) {
        const auto& facts = tracks_.facts()[place];
        const auto& sum = sums_[place];
        const std::size_t undated = facts.plays > sum.ever ? facts.plays - sum.ever : 0;
        auto track = named(facts);
        track.plays = {.dated = sum.plays, .undated = wanted_.is_all_time() ? undated : 0};
        track.skips = sum.skips;
        made_.undated_elsewhere += undated - track.plays.undated;
        made_.plays.undated += track.plays.undated;
        if (plays_of(track) != 0) ++made_.played_tracks;
        if (plays_of(track) == 0 && track.skips == 0) continue;
        auto group = track;
        if (!facts.artist.empty()) {
            group.name = facts.artist;
            group.artist.clear();
            artists.add(facts.artist, group);
        }
        if (!facts.album.empty()) {
            group.name = facts.album;
            group.artist = facts.album_artist.empty() ? facts.artist : facts.album_artist;
            albums.add(facts.album_in_folder, group);
        }
        if (track.skips != 0) made_.most_skipped.push_back(track);
        made_.top_tracks.push_back(std::move(track));
    }
    keep_largest(made_.most_skipped, wanted_.at_most, [](const ranked& each) { return each.skips; });
    keep_largest(made_.top_tracks, wanted_.at_most, plays_of);
    made_.top_artists = std::move(artists).largest(wanted_.at_most);
    made_.top_albums = std::move(albums).largest(wanted_.at_most);
}

void summary_maker::list_tracks() {
    std::vector<candidate> added, never, long_ago;
    const auto number = [](const std::optional<sys_seconds>& time) { return time ? time->time_since_epoch().count() : 0; };
    for (std::size_t place = 0; place < sums_.size(); ++place) {
        const auto& facts = tracks_.facts()[place];
        ++made_.ratings[facts.stars];
        const bool is_new = facts.added && (wanted_.is_all_time() ? *facts.added > wanted_.now - recent
                                                                  : is_inside(calendar_.at(*facts.added)));
        if (is_new) added.push_back({-number(facts.added), &facts, facts.added});
        if (facts.plays == 0 && sums_[place].ever == 0) never.push_back({number(facts.added), &facts, facts.added});
        else if (facts.last_played && *facts.last_played < wanted_.now - long_time)
            long_ago.push_back({-static_cast<std::int64_t>(facts.plays), &facts, facts.last_played});
    }
    made_.added = list_of(std::move(added), wanted_.at_most);
    made_.never_played = list_of(std::move(never), wanted_.at_most);
    made_.long_ago = list_of(std::move(long_ago), wanted_.at_most);
}

figures summary_maker::finish() && {
    made_.tracks = tracks_.facts().size();
    add_months();
    rank();
    list_tracks();
    return std::move(made_);
}

}  // namespace ostrevan::summary
