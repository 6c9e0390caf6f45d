#include "player/app/playing.h"

#include <exception>
#include <utility>

#include "player/library/cue_files.h"
#include "player/library/read_files.h"
#include "player/system/interrupt.h"
#include "player/tags/reader.h"
#include "player/titleformat/script.h"
#include "player/view/context_menu.h"

namespace ostrevan::app {

playing::playing(session& player, play_watcher& watcher)
    : player_(player),
      watcher_(watcher),
      kept_(player.library.queue(), [&watcher](const std::string& text) { watcher.on_failure(text); }) {}

std::vector<playback::play_item> playing::items() const {
    std::vector<playback::play_item> result;
    for (const auto& track : tracks_) {
        const auto& [path, subsong] = track->location();
        try {
            auto part = library::resolve_playable(path, subsong, tags::read_file);
            result.push_back({std::move(part.path), subsong == 0 ? std::nullopt : std::optional(part.start), part.end});
        } catch (const std::exception& error) {
            result.push_back({.path = path, .start = {}, .end = {}, .problem = library::reason_of(error, path)});
        }
    }
    return result;
}

/// The index reports failures itself; what it holds in memory may be saved with a later play.
void playing::acknowledge() try {
    is_saving_ = false;
    player_.save();
    for (const auto place : std::exchange(counted_, {})) {
        watcher_.on_counted(tracks_[place]);
        ++acknowledged_;
    }
} catch (const std::exception& error) {
    save_problem_ = error.what();
}

void playing::give_up() {
    if (!counted_.empty()) acknowledge();
    for (const auto place : counted_) watcher_.on_not_counted(tracks_[place], "it could not be saved");
    if (!counted_.empty()) watcher_.on_failure(save_problem_);
}

void playing::settle(std::size_t place, const play_verdict& verdict) {
    const auto& track = tracks_[place];
    if (verdict.has_failed)
        watcher_.on_failure(track->location().path + ": the play could not be counted: " + verdict.reason());
    if (!verdict.is_counted) return watcher_.on_not_counted(track, verdict.reason());
    counted_.push_back(place);
    if (!std::exchange(is_saving_, true)) post([this] { acknowledge(); });  // together with plays counted meanwhile
}

void playing::count(std::size_t place) {
    if (!is_heard_) return watcher_.on_not_counted(tracks_[place], "there is no sound device");
    tell_of_play(player_.loop, player_.services, tracks_[place],
                 [this, place](const play_verdict& verdict) { settle(place, verdict); });
}

void playing::show_progress() {
    if (!now_ || !status_) return;
    const bool is_current = status_->order.place(status_->order.current()) == now_->place;
    kept_.update(*status_, is_current ? now_->position : 0);
    watcher_.on_progress(*now_, *status_);
}

playback::play_callbacks playing::callbacks() {
    playback::play_callbacks out;
    out.on_started = [this](std::size_t place) {
        post([this, place] {
            now_ = now_playing{tracks_[place], place};
            watcher_.on_started(*now_);
        });
    };
    out.on_counted = [this](std::size_t place) { post([this, place] { count(place); }); };
    out.on_hearing = [this](bool is_heard) {
        post([this, is_heard] {
            is_heard_ = is_heard;
            if (!is_heard)
                watcher_.on_failure(
                    "There is no sound device: nothing is heard, and no play is counted. Connect one, or use --audio null "
                    "to count plays without sound.");
        });
    };
    out.on_error = [this](std::size_t place, const std::string& text) {
        post([this, place, text] {
            watcher_.on_failure(tracks_[place]->location().path + " cannot be played: " + text +
                                ". The play was not counted.");
        });
    };
    out.on_progress = [this](std::size_t place, double position, double duration) {
        post([this, place, position, duration] {
            now_ = now_playing{tracks_[place], place, position, duration};
            show_progress();
        });
    };
    out.on_status = [this](const playback::play_status& status) {
        post([this, status] {
            status_ = status;
            show_progress();
        });
    };
    return out;
}

void playing::play(const std::vector<playback::play_item>& items, const playback::queue& order) {
    try {
        const bool is_over = engine_->run(items, order, system::interrupted());
        post([this, is_over] { is_over_ = is_over; });
    } catch (const std::exception& error) {
        post([this, text = std::string(error.what())] { watcher_.on_failure(text); });
    }
}

void playing::run(play_start start, playback::play_options options) {
    options.volume = start.volume;
    options.start_at = start.seconds;
    kept_.begin(start);
    tracks_ = std::move(start.tracks);
    engine_.emplace(options, callbacks());
    std::thread worker([this, items = items(), order = std::move(start.order),
                        busy = std::optional<core::main_loop::activity>(player_.loop)]() mutable {
        play(items, order);
        busy.reset();
    });
    player_.run_until_idle();
    worker.join();
    give_up();
    if (now_ && status_) kept_.end(*status_, is_over_ ? 0 : now_->position);
    now_.reset();
}

void playing::perform(const playback::request& wanted) {
    if (!now_) return;
    if (wanted.what == playback::action::rate) rate(wanted.amount);
    else engine_->perform(wanted);
}

/// Through the menu, like any front end: what a rating is, only the components know.
void playing::rate(double stars) {
    const metadb_handle_list track(std::vector{now_->track});
    const auto menu = view::context_menu_for(player_.services, track);
    const auto word = std::to_string(static_cast<int>(stars));
    const auto& entry = view::find_command(menu, view::rating_path(word));
    if (entry.is_enabled) entry.run();
    post([this] { show_progress(); });
}

}  // namespace ostrevan::app
