#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "player/app/play_start.h"
#include "player/app/user_work.h"
#include "player/library/scan_summary.h"
#include "player/view/front_end.h"

namespace ostrevan::app {

/// What a front end lets its user do while everything else goes on. Nothing here waits. [main-thread]
class user_commands {
public:
    /// Progress, results and failures go to the front end. Both must outlive it.
    user_commands(session& player, view::front_end& ui, playback::audio_output audio)
        : player_(player), ui_(ui), audio_(audio), work_(player) {}

    void add_folders(std::vector<std::string> folders);
    void rescan();
    /// Plays the tracks from the one at `first` on, with the volume and the modes of the last playback.
    void play(metadb_handle_list tracks, std::size_t first);
    /// Goes on where the last playback stopped, or calls `if_none` when there was none.
    void play_again(std::function<void()> if_none);

    /// Runs a command of the main menu; `path` names it.
    void run(const std::string& path, std::function<void()> command) { work_.begin_on_main(path, std::move(command)); }
    /// Runs a command of the context menu of these tracks.
    void run_on(std::shared_ptr<const metadb_handle_list> tracks, const std::string& path, std::function<void()> command);

    [[nodiscard]] bool are_under_way() const noexcept { return work_.is_any(); }
    void stop_all() { work_.stop_all(); }

private:
    /// The front end knows of its playbacks by watching all of them.
    class silent_watcher final : public play_watcher {
        void on_started(const now_playing&, const playback::play_status&) override {}
        void on_progress(const now_playing&, const playback::play_status&) override {}
        void on_counted(const metadb_handle_ptr&) override {}
        void on_not_counted(const metadb_handle_ptr&, const std::string&) override {}
        void on_failure(const std::string&) override {}
        void on_ended(bool) override {}
    };
    using scan = std::function<library::scan_summary(const library::scan_options& options)>;

    void begin_scan(std::string why, scan work);
    void carry_out(const scan& work, core::job& job);
    void start(play_start start);
    /// [any-thread]
    void fail(const std::string& line);

    session& player_;
    view::front_end& ui_;
    const playback::audio_output audio_;
    user_work work_;
    silent_watcher silent_;
};

}  // namespace ostrevan::app
