#include "player/app/user_commands.h"

#include <utility>

#include "player/app/retag_notes.h"
#include "player/app/scan_report.h"
#include "player/app/track_selection.h"

namespace ostrevan::app {

void user_commands::fail(const std::string& line) {
    player_.loop.post([this, line] {
        ui_.note_failure();
        ui_.print_line(line);
    });
}

void user_commands::add_folders(std::vector<std::string> folders) {
    begin_scan("library add", [this, folders = std::move(folders)](const library::scan_options& options) {
        return player_.library.add_folders(folders, options);
    });
}

void user_commands::rescan() {
    begin_scan("library rescan", [this](const library::scan_options& options) { return player_.library.rescan(options); });
}

void user_commands::begin_scan(std::string why, scan work) {
    work_.begin(std::move(why), [this, work = std::move(work)](core::job& job) { carry_out(work, job); });
}

void user_commands::carry_out(const scan& work, core::job& job) {
    const auto note = [this](const std::string& line) { ui_.print_line(line); };
    const auto turn =
        player_.library_turn.take([&] { note("Another command is changing the library; this one comes after it."); });
    if (!turn) return;
    library::scan_options options;
    options.stop = &job.stop();
    options.on_main = player_.on_main();
    options.on_progress = [this](const library::scan_progress& progress) {
        player_.loop.post([this, progress] {
            ui_.show_progress("Reading " + progress.folder, progress.files_done, progress.files_known);
            player_.changes.tell(&change_watcher::on_library_changed);
        });
    };
    library::scan_summary done;
    try {
        done = work(options);
    } catch (...) {
        player_.loop.call([this] { ui_.end_progress(); });
        throw;
    }
    player_.loop.call([this] { ui_.end_progress(); });
    for (const auto& [path, reason] : done.refused) fail((path.empty() ? "An empty name" : path) + ' ' + reason);
    for (const auto& line : scan_problems(done)) fail(line);
    for (const auto& line : scan_notes(done)) note(line);
    if (done.is_stopped) note("The scan was interrupted. What it had read is kept; the next scan goes on.");
    job.wait_until_idle();
    note_retags(player_, player_.retags.take(), note);
    if (!done.is_stopped) player_.mark_library_seen();
}

void user_commands::run_on(std::shared_ptr<const metadb_handle_list> tracks, const std::string& path,
                           std::function<void()> command) {
    const auto held = std::make_shared<std::function<void()>>(std::move(command));
    work_.begin(path, [this, tracks = std::move(tracks), held](core::job& job) {
        note_chosen(player_, *tracks);
        player_.loop.call([&] {
            const auto once = std::exchange(*held, nullptr);  // and is destroyed on the main thread
            once();
        });
        job.wait_until_idle();
    });
}

void user_commands::play(metadb_handle_list tracks, std::size_t first) {
    if (tracks.empty()) return;
    const auto now = player_.playing.status();
    work_.begin("play", [this, tracks = std::move(tracks), first, now](core::job&) {
        playback::play_modes modes;
        double volume = 100;
        if (now) {
            modes = now->order.modes();
            modes.stop_after = false;
            volume = now->volume;
        } else if (const auto before = start_again(player_)) {
            modes = before->order.modes();
            volume = before->volume;
        }
        const auto shuffle = std::exchange(modes.shuffle, playback::shuffle_mode::off);
        auto next = start_with(player_, tracks, modes);
        next.order.resume(next.order.round(), first);
        next.order.set_shuffle(shuffle);  // all the others come after the first one
        next.volume = volume;
        start(std::move(next));
    });
}

void user_commands::play_again(std::function<void()> if_none) {
    work_.begin("play", [this, if_none = std::move(if_none)](core::job&) {
        if (auto before = start_again(player_)) return start(std::move(*before));
        player_.loop.call([&] { if_none(); });
    });
}

void user_commands::start(play_start start) {
    player_.loop.call([&] { player_.playing.start(std::move(start), {.audio = audio_}, silent_); });
}

}  // namespace ostrevan::app
