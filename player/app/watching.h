#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "player/app/play_counting.h"
#include "player/app/session.h"
#include "player/watch/find_track.h"
#include "player/watch/listener.h"
#include "player/watch/observation_queue.h"
#include "player/watch/player_filter.h"

namespace ostrevan::app {

/// News about another player.
struct watch_report {
    enum class kind {
        playing,      ///< a track has begun, or more is told of it
        counted,      ///< the play is on disk
        not_counted,  ///< a play, but not counted: see `reason`
        failure,      ///< the play could not be counted or saved: see `reason`
        source,       ///< `reason` says why the players of a source cannot be heard, or that they can
    };
    kind what;
    std::string player;  ///< or the source
    watch::told_track told{};
    library::track_ptr track{};  ///< of the library; null when there is none
    std::string reason{};
};

struct watch_options {
    watch::player_filter players{};
    std::string music_folder{};  ///< of MPD; it is asked when empty
};

/// Counts what other players play. One at a time, or each play would count twice.
class watching {
public:
    using report_sink = std::function<void(const watch_report&)>;

    /// The session must outlive it. Reports come on the thread of `run`. Throws with a message for the user when another one
    /// watches.
    watching(session& player, watch_options options, report_sink report);
    ~watching() { player_.is_watching = false; }
    watching(const watching&) = delete;
    watching& operator=(const watching&) = delete;

    /// Notices within a quarter of a second that `stop` has become true, and returns when the sources have ended, which may
    /// take as long as connecting to MPD. Runs on the own thread of the current job, which must not be the main thread.
    void run(const std::atomic<bool>& stop);

private:
    struct heard_player {
        watch::listener listener;
        watch::found_track found{};  // of the track it plays
        watch::told_track looked_up{};
    };
    struct last_play {
        std::string player;
        double time = 0;
    };

    using last_plays = std::map<library::track_ptr, last_play>;

    void take(const watch::observation& heard);
    void on_trouble(const std::string& source, const std::string& text);
    heard_player& player_called(const std::string& name);
    void on_playing(const std::string& name, const watch::told_track& told, bool is_new);
    void on_counted(const std::string& name, const watch::told_track& told, double heard, double began);
    void look_up(heard_player& player, const watch::told_track& told);
    double true_length(const std::string& name, const watch::told_track& told);
    /// Whether another player has reported the same during this play.
    [[nodiscard]] static bool is_heard_twice(const last_plays& known, const std::string& name, double began,
                                             const library::track_ptr& track);
    void on_skipped(const std::string& name, const watch::told_track& told, double heard, double began);
    /// Returns whether a component counted it.
    bool count(const watch_report& play, double heard);
    void leave_out(watch_report play);
    play_verdict tell_components(const library::track_ptr& track, double heard, const std::string& player);

    session& player_;
    const watch_options options_;
    const report_sink report_;
    double time_ = 0;  // of the observation in hand
    std::map<std::string, heard_player> heard_;
    last_plays plays_;
    last_plays skips_;
    std::map<std::string, std::string> troubles_;  // by source
    std::set<std::string> left_out_;               // tracks already named
};

}  // namespace ostrevan::app
