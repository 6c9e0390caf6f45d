#include <iostream>
#include <optional>
#include <thread>
#include <utility>

#include "player/app/play_counting.h"
#include "player/library/cue_files.h"
#include "player/library/read_files.h"
#include "player/playback/mpv_player.h"
#include "player/system/interrupt.h"
#include "player/tags/reader.h"
#include "player/terminal/command.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

struct play_options {
    track_arguments tracks{};
    std::string audio = "auto";
    bool fast = false;
};

constexpr const char* play_examples =
    "Examples:\n"
    "  ostrevan play ~/Music/song.flac 'album.cue|3'\n"
    "  ostrevan play --where '%rating% IS 5'\n"
    "  ostrevan play --audio null --fast ~/Music/album";

/// Plays on a separate thread while the main loop serves the components. A counted play is printed once it is on disk;
/// plays in quick succession share one wait for the disk.
class play_run {
public:
    play_run(run_context& context, const play_options& options)
        : context_(context), options_(options), tracks_(tracks_of(context, options.tracks, on_missing::go_on)) {}

    void run();

private:
    void take_items();
    playback::play_callbacks callbacks();
    void play();
    void count(std::size_t index);
    void settle(std::size_t index, const app::play_verdict& verdict);
    void acknowledge();
    void give_up();
    void say_not_counted(std::size_t index, const std::string& reason);
    [[nodiscard]] std::string title_of(std::size_t index) const;
    void post(core::main_loop::task work) { context_.player.loop.post(std::move(work)); }

    run_context& context_;
    const play_options& options_;
    metadb_handle_list tracks_;
    std::vector<playback::play_item> items_;
    const titleformat::script title_ = titleformat::compile("[%artist% - ]%title%");
    // Main thread only.
    bool is_heard_ = true;
    bool is_saving_ = false;
    std::string save_problem_;
    std::vector<std::size_t> counted_;  // and not yet known to be on disk
    std::size_t acknowledged_ = 0;
};

std::string play_run::title_of(std::size_t index) const {
    return title_.run(titleformat::track_fields(context_.player.fields, *tracks_[index])).text;
}

/// Leaves out tracks whose sheet has changed.
void play_run::take_items() {
    metadb_handle_list there;
    for (const auto& track : tracks_) {
        const auto& [path, subsong] = track->location();
        try {
            auto part = library::resolve_playable(path, subsong, tags::read_file);
            items_.push_back({std::move(part.path), subsong == 0 ? std::nullopt : std::optional(part.start), part.end});
            there.items().push_back(track);
        } catch (const std::exception& error) {
            context_.screen.error(path + " cannot be played: " + library::reason_of(error, path));
        }
    }
    tracks_ = std::move(there);
}

void play_run::say_not_counted(std::size_t index, const std::string& reason) {
    std::cout << "Played, not counted: " << title_of(index) << ": " << reason << std::endl;
}

/// The index reports failures itself; what it holds in memory may be saved with a later play.
void play_run::acknowledge() try {
    is_saving_ = false;
    context_.player.save();
    for (const auto index : counted_) std::cout << "Counted: " << title_of(index) << '\n';
    std::cout.flush();
    acknowledged_ += counted_.size();
    counted_.clear();
} catch (const std::exception& error) {
    save_problem_ = error.what();
}

void play_run::give_up() {
    if (!counted_.empty()) acknowledge();
    for (const auto index : counted_) say_not_counted(index, "it could not be saved");
    if (!counted_.empty()) context_.screen.error(save_problem_);
}

void play_run::settle(std::size_t index, const app::play_verdict& verdict) {
    if (verdict.has_failed)
        context_.screen.error(tracks_[index]->location().path + ": the play could not be counted: " + verdict.reason());
    if (!verdict.is_counted) return say_not_counted(index, verdict.reason());
    counted_.push_back(index);
    if (!std::exchange(is_saving_, true)) post([this] { acknowledge(); });  // together with plays counted meanwhile
}

void play_run::count(std::size_t index) {
    if (!is_heard_) return say_not_counted(index, "there is no sound device");
    app::tell_of_play(context_.player.loop, context_.player.services, tracks_[index],
                      [this, index](const app::play_verdict& verdict) { settle(index, verdict); });
}

playback::play_callbacks play_run::callbacks() {
    playback::play_callbacks out;
    out.on_started = [this](std::size_t index) {
        post([this, index] {
            context_.screen.note("Playing " + std::to_string(index + 1) + " of " + std::to_string(tracks_.get_count()) +
                                 ": " + title_of(index));
        });
    };
    out.on_counted = [this](std::size_t index) { post([this, index] { count(index); }); };
    out.on_hearing = [this](bool is_heard) {
        post([this, is_heard] {
            is_heard_ = is_heard;
            if (!is_heard)
                context_.screen.error(
                    "There is no sound device: nothing is heard, and no play is counted. Connect one, or use --audio null "
                    "to count plays without sound.");
        });
    };
    out.on_error = [this](std::size_t index, const std::string& text) {
        post([this, index, text] {
            context_.screen.error(tracks_[index]->location().path + " cannot be played: " + text +
                                  ". The play was not counted.");
        });
    };
    out.on_progress = [this](std::size_t index, double position, double duration) {
        post([this, index, position, duration] {
            context_.screen.show_progress("s  " + title_of(index), static_cast<std::size_t>(position),
                                          static_cast<std::size_t>(duration));
        });
    };
    return out;
}

void play_run::play() {
    try {
        playback::mpv_player player(
            {.audio = options_.audio == "null" ? playback::audio_output::null : playback::audio_output::automatic,
             .fast = options_.fast},
            callbacks());
        player.run(items_, system::interrupted());
    } catch (const std::exception& error) {
        post([this, text = std::string(error.what())] { context_.screen.error(text); });
    }
}

void play_run::run() {
    take_items();
    std::thread worker([this, busy = std::optional<core::main_loop::activity>(context_.player.loop)]() mutable {
        play();
        busy.reset();
    });
    context_.player.run_until_idle();
    worker.join();
    give_up();
    context_.screen.end_progress();
    if (system::interrupted())
        context_.screen.note("Interrupted: plays counted so far (" + std::to_string(acknowledged_) + ") are kept.");
}

const command_file play_command(30, [](command_declarations& declare) {
    const auto wanted = std::make_shared<play_options>();
    auto& app = declare.add("play", "Play tracks", play_examples);
    wanted->tracks.declare(app);
    app.add_option("--audio", wanted->audio, "auto: the sound device; null: none")->check(CLI::IsMember({"auto", "null"}));
    app.add_flag("--fast", wanted->fast, "Decode as fast as possible, without sound");
    declare.run(app, [wanted](run_context& context) { play_run(context, *wanted).run(); });
});

}  // namespace
}  // namespace ostrevan::terminal
