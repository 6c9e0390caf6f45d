#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "player/app/kept_queue.h"
#include "player/app/listen_log.h"
#include "player/app/play_counting.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/playback/mpv_player.h"

namespace ostrevan::app {

/// What sounds now.
struct now_playing {
    metadb_handle_ptr track;
    playback::queue::entry entry = 0;
    double position = 0;  ///< seconds
    double duration = 0;  ///< seconds; 0 when unknown
};

/// Shows a playback. [main-thread]
class play_watcher {
public:
    virtual ~play_watcher() = default;
    virtual void on_started(const now_playing& now, const playback::play_status& status) = 0;
    /// Called several times a second, and when the listener has changed something.
    virtual void on_progress(const now_playing& now, const playback::play_status& status) = 0;
    /// The play is on disk.
    virtual void on_counted(const metadb_handle_ptr& track) = 0;
    virtual void on_not_counted(const metadb_handle_ptr& track, const std::string& reason) = 0;
    virtual void on_failure(const std::string& text) = 0;
    /// Nothing plays any more and everything is counted, or another playback is about to begin.
    virtual void on_ended(bool is_replaced) = 0;

protected:
    play_watcher() = default;
    play_watcher(const play_watcher&) = default;
    play_watcher& operator=(const play_watcher&) = default;
};

/// What plays in this player. A list is played on a thread of its own. Plays are reported once they are on disk; those in
/// quick succession share one wait for the disk. [main-thread]
class playing {
public:
    /// `save` waits until all statistics are on disk, and throws when they cannot be saved. [any-thread]
    playing(core::main_loop& loop, const core::service_registry& services, library::queue_store& queue, listen_log& log,
            std::function<void()> save);
    playing(const playing&) = delete;
    playing& operator=(const playing&) = delete;

    /// Begins to play, after what plays now has been ended. The start says where; the options say how, but for the volume
    /// and the position. The playback ends when the list does, when the listener quits, or when the current job is stopped.
    /// `starter` watches this playback only, and lives until it has ended.
    void start(play_start start, playback::play_options options, play_watcher& starter);

    /// These watch every playback.
    void add(play_watcher& watcher) { watchers_.push_back(&watcher); }
    void remove(play_watcher& watcher) { std::erase(watchers_, &watcher); }

    /// Performs an action of the listener. Does nothing when nothing plays.
    void perform(const playback::request& wanted);

    /// Edits the list that plays, or is about to. The tracks added get the next entries of the queue, in the order of the
    /// calls. The future is that of a `queue_edit`; there is none when nothing plays.
    std::optional<std::future<void>> edit(const metadb_handle_list& added, std::vector<playback::play_item> items,
                                          std::function<bool(playback::queue&)> change);

    /// Whether something plays or is about to.
    [[nodiscard]] bool is_under_way() const noexcept { return engine_.has_value(); }
    /// What sounds now; empty when nothing plays.
    [[nodiscard]] const std::optional<now_playing>& now() const noexcept { return now_; }
    [[nodiscard]] const std::optional<playback::play_status>& status() const noexcept { return status_; }
    /// The tracks by entry, with those that were removed.
    [[nodiscard]] const metadb_handle_list& tracks() const noexcept { return tracks_; }

private:
    struct waiting_start {
        play_start start;
        playback::play_options options;
        play_watcher* starter;
        core::job_ptr starter_job;
    };
    void begin(waiting_start next);
    void end();
    void play(const metadb_handle_list& tracks, const playback::play_status& from, double seconds,
              const std::atomic<bool>& stop);
    playback::play_callbacks callbacks();
    void take(const playback::play_status& status);
    void rate(double stars);
    void count(std::size_t entry, double heard);
    void settle(std::size_t entry, double heard, const play_verdict& verdict);
    void save_counted();
    void acknowledge(const std::vector<std::size_t>& entries, const std::string& problem);
    void give_up();
    void show_progress();
    template <class Work>
    void tell(Work work) {
        for (auto* watcher : std::vector(watchers_)) work(*watcher);
        if (starter_ != nullptr) work(*starter_);
    }
    void fail(const std::string& text);
    template <class Work>
    void post(Work work) {
        loop_.post(std::move(work));
    }

    core::main_loop& loop_;
    const core::service_registry& services_;
    library::queue_store& store_;
    listen_log& log_;
    const std::function<void()> save_;
    std::vector<play_watcher*> watchers_;
    std::optional<waiting_start> next_;

    // Of the current playback.
    play_watcher* starter_ = nullptr;
    std::optional<kept_queue> kept_;  // used on the thread of the playback
    metadb_handle_list tracks_;
    std::optional<playback::mpv_player> engine_;
    std::optional<playback::play_status> status_;
    std::optional<now_playing> now_;
    bool is_heard_ = true;
    bool is_saving_ = false;
    std::string save_problem_;
    std::vector<std::size_t> counted_;  // and not yet known to be on disk
};

}  // namespace ostrevan::app
