#include <iostream>
#include <thread>

#include "ostrevan/statistics_collector.h"
#include "player/cli/commands.h"
#include "player/front/interrupt.h"
#include "player/library/cue_files.h"
#include "player/playback/mpv_player.h"
#include "player/tags/reader.h"

namespace ostrevan::cli {
namespace {

/// Plays on a thread of its own while the main loop serves the components. A counted play is printed when it is on disk, and
/// plays that follow each other closely share one wait for the disk.
class play_run {
public:
    play_run(run_context& context, const play_tracks& arguments)
        : context_(context), arguments_(arguments), tracks_(tracks_of(context, arguments.tracks)) {}

    void run();

private:
    std::vector<playback::play_item> items();
    playback::play_callbacks callbacks();
    void play(const std::vector<playback::play_item>& list);
    void count(std::size_t index);
    void acknowledge();
    [[nodiscard]] std::string title_of(std::size_t index) const;
    void post(main_loop::task work) { context_.player.loop().post(std::move(work)); }

    run_context& context_;
    const play_tracks& arguments_;
    const metadb_handle_list tracks_;
    const titleformat::script title_ = titleformat::compile("[%artist% - ]%title%");
    // Main thread only.
    std::vector<std::size_t> counted_;
    std::size_t acknowledged_ = 0;
};

std::string play_run::title_of(std::size_t index) const {
    return title_.run(titleformat::track_fields(context_.player.fields(), *tracks_[index])).text;
}

std::vector<playback::play_item> play_run::items() {
    std::vector<playback::play_item> list;
    for (const auto& track : tracks_) {
        const auto& [path, subsong] = track->location();
        auto part = library::resolve_playable(path, subsong, tags::read_file);
        list.push_back({std::move(part.path), subsong == 0 ? std::nullopt : std::optional(part.start), part.end});
    }
    return list;
}

void play_run::acknowledge() {
    if (counted_.empty()) return;
    context_.player.save();
    for (const auto index : counted_) std::cout << "Counted: " << title_of(index) << '\n';
    std::cout.flush();
    acknowledged_ += counted_.size();
    counted_.clear();
}

void play_run::count(std::size_t index) {
    context_.player.services().for_each<playback_statistics_collector>(
        [&](playback_statistics_collector& collector) { collector.on_item_played(tracks_[index]); });
    // What the collectors have posted runs before this, and plays counted meanwhile before the second step.
    post([this, index] {
        counted_.push_back(index);
        if (counted_.size() == 1) post([this] { acknowledge(); });
    });
}

playback::play_callbacks play_run::callbacks() {
    playback::play_callbacks out;
    out.on_started = [this](std::size_t index) {
        post([this, index] {
            context_.screen.note("Playing " + std::to_string(index + 1) + " of " + std::to_string(tracks_.get_count()) +
                                 ": " + title_of(index));
        });
    };
    out.on_counted = [this](std::size_t index) { count(index); };
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

void play_run::play(const std::vector<playback::play_item>& list) {
    try {
        playback::mpv_player player(
            {.audio = arguments_.null_audio ? playback::audio_output::null : playback::audio_output::automatic,
             .fast = arguments_.fast},
            callbacks());
        player.run(list, front::interrupted());
    } catch (const std::exception& error) {
        post([this, text = std::string(error.what())] { context_.screen.error(text); });
    }
}

void play_run::run() {
    const auto list = items();
    std::thread worker([this, &list, busy = std::optional<main_loop::activity>(context_.player.loop())]() mutable {
        play(list);
        busy.reset();
    });
    context_.player.run_until_idle();
    worker.join();
    context_.screen.end_progress();
    if (front::interrupted())
        context_.screen.note("Interrupted: plays counted so far (" + std::to_string(acknowledged_) + ") are kept.");
}

}  // namespace

void run(run_context& context, const play_tracks& arguments) { play_run(context, arguments).run(); }

}  // namespace ostrevan::cli
