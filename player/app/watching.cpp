#include "player/app/watching.h"

#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <stdexcept>
#include <utility>

#include "player/watch/mpd_source.h"
#include "player/watch/mpris_source.h"

namespace ostrevan::app {
namespace {

constexpr auto patience = std::chrono::milliseconds(250);

/// A web radio names a new track every few minutes, for as long as it plays.
constexpr std::size_t most_left_out = 10'000;

constexpr const char* not_counted = "the play could not be counted: ";

}  // namespace

watching::watching(session& player, watch_options options, report_sink report)
    : player_(player), options_(std::move(options)), report_(std::move(report)) {
    if (player_.is_watching.exchange(true))
        throw std::runtime_error("Other players are watched already, and a second watcher would count every play twice.");
}

void watching::run(const std::atomic<bool>& stop) {
    watch::observation_queue news;
    const auto mpris = watch::watch_mpris(news, options_.players);
    const auto mpd = options_.players.admits("mpd") ? watch::watch_mpd(news, options_.music_folder) : nullptr;
    for (; !stop; core::job::current()->serve())
        if (const auto heard = news.pop(patience)) take(*heard);
}

void watching::take(const watch::observation& heard) {
    time_ = heard.time;
    if (const auto* const trouble = std::get_if<watch::has_trouble>(&heard.what))
        return on_trouble(heard.player, trouble->text);
    player_called(heard.player).listener.hear(heard.time, heard.what);
    if (std::holds_alternative<watch::has_gone>(heard.what)) heard_.erase(heard.player);
}

void watching::on_trouble(const std::string& source, const std::string& text) {
    const auto known = troubles_.find(source);
    if (known != troubles_.end() && known->second == text) return;
    troubles_[source] = text;
    report_({.what = watch_report::kind::source, .player = source, .reason = text.empty() ? source + " is heard." : text});
}

watching::heard_player& watching::player_called(const std::string& name) {
    const auto known = heard_.find(name);
    if (known != heard_.end()) return known->second;
    watch::listener::events events{
        .on_playing = [this, name](const watch::told_track& told, bool is_new) { on_playing(name, told, is_new); },
        .on_counted = [this, name](const watch::told_track& told, double heard,
                                   double began) { on_counted(name, told, heard, began); },
        .on_skipped = [this, name](const watch::told_track& told, double heard,
                                   double began) { on_skipped(name, told, heard, began); },
        .true_length = [this, name](const watch::told_track& told) { return true_length(name, told); }};
    return heard_.emplace(name, heard_player{watch::listener(std::move(events))}).first->second;
}

void watching::look_up(heard_player& player, const watch::told_track& told) {
    if (player.looked_up == told) return;
    const auto library = player_.library.sorted_items();
    player.looked_up = told;
    player.found = watch::find_track(told, *library);
}

/// For the same file, the library's length is better than the player's. For another file with the same tags it is used only
/// when the player gives none, or one that is far too short.
double watching::true_length(const std::string& name, const watch::told_track& told) {
    auto& player = player_called(name);
    look_up(player, told);
    const auto info = player.found.track ? player.found.track->info() : nullptr;
    const double known = info ? info->info().length() : 0;
    return player.found.is_by_location || told.length < known / 2 ? known : 0;
}

void watching::on_playing(const std::string& name, const watch::told_track& told, bool is_new) {
    auto& player = player_called(name);
    const auto before = player.found.track;
    if (is_new && !before) player.looked_up = {};  // it may have come into the library
    look_up(player, told);
    if (is_new || player.found.track != before) report_({watch_report::kind::playing, name, told, player.found.track});
}

void watching::on_counted(const std::string& name, const watch::told_track& told, double heard, double began) {
    auto& player = player_called(name);
    look_up(player, told);
    watch_report play{watch_report::kind::counted, name, told, player.found.track, player.found.reason};
    if (!play.track) return leave_out(std::move(play));
    if (is_heard_twice(plays_, name, began, play.track)) {
        play.what = watch_report::kind::not_counted;
        play.reason = "it was counted for " + plays_[play.track].player + ", which plays it as well";
        return report_(play);
    }
    if (count(play, heard)) plays_[play.track] = {name, time_};
}

void watching::on_skipped(const std::string& name, const watch::told_track& told, double heard, double began) {
    auto& player = player_called(name);
    look_up(player, told);
    const auto track = player.found.track;
    if (!track || is_heard_twice(skips_, name, began, track)) return;
    skips_[track] = {name, time_};
    player_.loop.call([&] { player_.listens.note_skip(track, heard, name); });
}

/// Some players come to the bus twice, themselves and through another program. Nobody hears a track twice at the same time.
bool watching::is_heard_twice(const last_plays& known, const std::string& name, double began,
                              const library::track_ptr& track) {
    const auto last = known.find(track);
    return last != known.end() && last->second.player != name && began < last->second.time;
}

void watching::leave_out(watch_report play) {
    if (left_out_.size() >= most_left_out) left_out_.clear();
    if (!left_out_.insert(play.told.location + '\n' + play.told.artist + '\n' + play.told.title).second) return;
    play.what = watch_report::kind::not_counted;
    report_(play);
}

play_verdict watching::tell_components(const library::track_ptr& track, double heard, const std::string& player) {
    auto promise = std::make_shared<std::promise<play_verdict>>();
    auto verdict = promise->get_future();
    player_.loop.post([this, track, heard, player, promise = std::move(promise)] {
        tell_of_play(player_.loop, player_.services, track, [=, this](const play_verdict& given) {
            if (given.is_counted) player_.listens.note_play(track, heard, player);
            promise->set_value(given);
        });
    });
    core::job::current()->serve_until(
        [&] { return verdict.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    return verdict.get();
}

bool watching::count(const watch_report& play, double heard) {
    auto report = play;
    bool is_counted = false;
    try {
        const auto verdict = tell_components(play.track, heard, play.player);
        is_counted = verdict.is_counted;
        if (is_counted) player_.save();
        else report.reason = (verdict.has_failed ? not_counted : "") + verdict.reason();
        report.what = is_counted           ? watch_report::kind::counted
                      : verdict.has_failed ? watch_report::kind::failure
                                           : watch_report::kind::not_counted;
    } catch (const std::exception& error) {
        report.what = watch_report::kind::failure;
        report.reason = (is_counted ? "the play is counted, but not saved yet: " : not_counted) + std::string(error.what());
    }
    report_(report);
    return is_counted;
}

}  // namespace ostrevan::app
