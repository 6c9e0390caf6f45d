#include "player/app/playing.h"

#include <exception>
#include <thread>
#include <utility>

#include "player/app/play_start.h"
#include "player/core/cause.h"
#include "player/view/context_menu.h"

namespace ostrevan::app {

playing::playing(core::main_loop& loop, const core::service_registry& services, library::queue_store& queue, listen_log& log,
                 std::function<void()> save)
    : loop_(loop), services_(services), store_(queue), log_(log), save_(std::move(save)) {}

void playing::start(play_start start, playback::play_options options, play_watcher& starter) {
    options.volume = start.volume;
    options.start_at = start.seconds;
    waiting_start next{std::move(start), options, &starter, core::job::current()};
    if (!engine_) return begin(std::move(next));
    if (next_) next_->starter->on_ended(true);  // has not begun
    next_ = std::move(next);
    engine_->perform({playback::action::make_way});
}

/// The playback is a job of its own, and its thread that job's own thread.
void playing::begin(waiting_start next) {
    starter_ = next.starter;
    status_.emplace(next.start.order, next.start.volume);
    is_saving_ = false;
    is_heard_ = true;
    counted_.clear();
    engine_.emplace(next.options, callbacks());
    kept_.emplace(store_, [this](const std::string& text) { post([this, text] { fail(text); }); });
    tracks_ = std::move(next.start.tracks);
    const core::job::scope nobody(nullptr);
    std::thread([this, tracks = tracks_, from = playback::play_status{std::move(next.start.order), next.start.volume},
                 seconds = next.start.seconds, starter = std::move(next.starter_job),
                 busy = core::main_loop::activity(loop_)] {
        const auto job = starter ? std::make_shared<core::job>(starter->stop()) : std::make_shared<core::job>();
        const core::job::scope scope(job);
        play(tracks, from, seconds, core::stop_flag());
        job->wait_until_idle();
        loop_.call([this] {
            if (!counted_.empty()) save_counted();  // a last attempt
        });
        job->wait_until_idle();
        loop_.call([this] {
            give_up();
            end();
        });
    }).detach();
}

void playing::play(const metadb_handle_list& tracks, const playback::play_status& from, double seconds,
                   const std::atomic<bool>& stop) {
    try {
        kept_->begin(tracks, from, seconds);
        kept_->end(engine_->run(items_of(tracks), from.order, stop));
    } catch (const std::exception& error) {
        post([this, text = std::string(error.what())] { fail(text); });
    }
}

void playing::end() {
    now_.reset();
    engine_.reset();
    auto next = std::exchange(next_, std::nullopt);
    tell([&](play_watcher& watcher) { watcher.on_ended(next.has_value()); });
    starter_ = nullptr;
    if (next) begin(std::move(*next));
}

void playing::fail(const std::string& text) {
    tell([&](play_watcher& watcher) { watcher.on_failure(text); });
}

void playing::save_counted() {
    is_saving_ = true;
    loop_.start_thread([this, entries = std::exchange(counted_, {})] {
        std::string problem;
        try {
            save_();
        } catch (const std::exception& error) {
            problem = error.what();
        }
        post([this, entries, problem] { acknowledge(entries, problem); });
    });
}

/// The index reports failures itself; what it holds in memory may be saved with a later play.
void playing::acknowledge(const std::vector<std::size_t>& entries, const std::string& problem) {
    is_saving_ = false;
    save_problem_ = problem;
    if (!problem.empty()) {
        counted_.insert(counted_.begin(), entries.begin(), entries.end());
        return;
    }
    for (const auto entry : entries) tell([&](play_watcher& watcher) { watcher.on_counted(tracks_[entry]); });
    if (!counted_.empty()) save_counted();  // those counted meanwhile
}

void playing::give_up() {
    if (counted_.empty()) return;
    for (const auto entry : counted_)
        tell([&](play_watcher& watcher) { watcher.on_not_counted(tracks_[entry], "it could not be saved"); });
    fail(save_problem_);
}

void playing::settle(std::size_t entry, double heard, const play_verdict& verdict) {
    const auto& track = tracks_[entry];
    if (verdict.has_failed) fail(track->location().path + ": the play could not be counted: " + verdict.reason());
    if (!verdict.is_counted) return tell([&](play_watcher& watcher) { watcher.on_not_counted(track, verdict.reason()); });
    log_.note_play(track, heard, {});
    counted_.push_back(entry);
    if (!is_saving_) save_counted();
}

void playing::count(std::size_t entry, double heard) {
    if (!is_heard_)
        return tell([&](play_watcher& watcher) { watcher.on_not_counted(tracks_[entry], "there is no sound device"); });
    tell_of_play(loop_, services_, tracks_[entry],
                 [this, entry, heard](const play_verdict& verdict) { settle(entry, heard, verdict); });
}

void playing::show_progress() {
    if (!now_ || !status_) return;
    tell([this](play_watcher& watcher) { watcher.on_progress(*now_, *status_); });
}

playback::play_callbacks playing::callbacks() {
    playback::play_callbacks out;
    out.on_started = [this](std::size_t entry) {
        post([this, which = static_cast<playback::queue::entry>(entry)] {
            now_ = now_playing{tracks_[which], which};
            tell([this](play_watcher& watcher) { watcher.on_started(*now_, *status_); });
        });
    };
    out.on_counted = [this](std::size_t entry, double heard) { post([this, entry, heard] { count(entry, heard); }); };
    out.on_skipped = [this](std::size_t entry, double heard) {
        post([this, entry, heard] {
            if (is_heard_) log_.note_skip(tracks_[entry], heard, {});
        });
    };
    out.on_hearing = [this](bool is_heard) {
        post([this, is_heard] {
            is_heard_ = is_heard;
            if (!is_heard)
                fail(
                    "There is no sound device: nothing is heard, and no play is counted. Connect one, or use --audio null "
                    "to count plays without sound.");
        });
    };
    out.on_error = [this](std::size_t entry, const std::string& text) {
        post([this, entry, text] {
            fail(tracks_[entry]->location().path + " cannot be played: " + text + ". The play was not counted.");
        });
    };
    out.on_progress = [this](std::size_t entry, double position, double duration) {
        kept_->on_progress(entry, position);
        post([this, which = static_cast<playback::queue::entry>(entry), position, duration] {
            if (!status_->order.place_of(which)) return;  // what was removed is heard a moment longer
            now_ = now_playing{tracks_[which], which, position, duration};
            show_progress();
        });
    };
    out.on_status = [this](const playback::play_status& status) {
        kept_->on_status(status);
        post([this, status] { take(status); });
    };
    return out;
}

void playing::take(const playback::play_status& status) {
    if (status.order.size() == 0) return;  // everything was removed: the end follows
    status_ = status;
    const auto& order = status_->order;
    if (now_ && !order.place_of(now_->entry)) now_ = now_playing{tracks_[order.current_entry()], order.current_entry()};
    show_progress();
}

std::optional<std::future<void>> playing::edit(const metadb_handle_list& added, std::vector<playback::play_item> items,
                                               std::function<bool(playback::queue&)> change) {
    if (!engine_) return std::nullopt;
    for (const auto& track : added) tracks_.items().push_back(track);
    auto keep_and_change = [this, added, change = std::move(change)](playback::queue& order) {
        kept_->add(added);
        return change(order);
    };
    playback::queue_edit edit{.added = std::move(items), .change = std::move(keep_and_change)};
    auto done = edit.done.get_future();
    engine_->edit(std::move(edit));
    return done;
}

void playing::perform(const playback::request& wanted) {
    if (!now_) return;
    if (wanted.what == playback::action::rate) rate(wanted.amount);
    else engine_->perform(wanted);
}

/// Through the menu, like any front end: what a rating is, only the components know.
void playing::rate(double stars) {
    const metadb_handle_list track(std::vector{now_->track});
    const auto menu = view::context_menu_for(services_, track);
    const auto word = std::to_string(static_cast<int>(stars));
    const core::cause_scope why("rate " + word);
    const auto& entry = view::find_command(menu, view::rating_path(word));
    if (entry.is_enabled) entry.run();
    post([this] { show_progress(); });
}

}  // namespace ostrevan::app
