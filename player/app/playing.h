#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "player/app/kept_queue.h"
#include "player/app/play_counting.h"
#include "player/app/session.h"
#include "player/playback/mpv_player.h"

namespace ostrevan::app {

/// What sounds now.
struct now_playing {
    metadb_handle_ptr track;
    std::size_t place = 0;  ///< in the list
    double position = 0;    ///< seconds
    double duration = 0;    ///< seconds; 0 when unknown
};

/// Shows a playback. [main-thread]
class play_watcher {
public:
    virtual ~play_watcher() = default;
    virtual void on_started(const now_playing& now) = 0;
    /// Called several times a second, and when the listener has changed something.
    virtual void on_progress(const now_playing& now, const playback::play_status& status) = 0;
    /// The play is on disk.
    virtual void on_counted(const metadb_handle_ptr& track) = 0;
    virtual void on_not_counted(const metadb_handle_ptr& track, const std::string& reason) = 0;
    virtual void on_failure(const std::string& text) = 0;

protected:
    play_watcher() = default;
    play_watcher(const play_watcher&) = default;
    play_watcher& operator=(const play_watcher&) = default;
};

/// Plays a list on a thread of its own while the main loop serves the components. Plays are reported once they are on disk;
/// those in quick succession share one wait for the disk. [main-thread]
class playing {
public:
    playing(session& player, play_watcher& watcher);
    playing(const playing&) = delete;
    playing& operator=(const playing&) = delete;

    /// Returns after the end of the list, or when the listener quits or interrupts. Runs the main loop meanwhile. The start
    /// says where; the options say how, but for the volume and the position.
    void run(play_start start, playback::play_options options);

    /// Performs an action of the listener. Does nothing when nothing plays.
    void perform(const playback::request& wanted);

    /// How many plays were counted.
    [[nodiscard]] std::size_t counted() const noexcept { return acknowledged_; }

private:
    [[nodiscard]] std::vector<playback::play_item> items() const;
    playback::play_callbacks callbacks();
    void play(const std::vector<playback::play_item>& items, const playback::queue& order);
    void rate(double stars);
    void count(std::size_t place);
    void settle(std::size_t place, const play_verdict& verdict);
    void acknowledge();
    void give_up();
    void show_progress();
    template <class Work>
    void post(Work work) {
        player_.loop.post(std::move(work));
    }

    session& player_;
    play_watcher& watcher_;
    kept_queue kept_;
    metadb_handle_list tracks_;
    std::optional<playback::mpv_player> engine_;
    std::optional<playback::play_status> status_;
    std::optional<now_playing> now_;
    bool is_over_ = false;  // the end of the list was reached
    bool is_heard_ = true;
    bool is_saving_ = false;
    std::string save_problem_;
    std::vector<std::size_t> counted_;  // and not yet known to be on disk
    std::size_t acknowledged_ = 0;
};

}  // namespace ostrevan::app
