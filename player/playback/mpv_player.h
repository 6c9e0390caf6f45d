#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "player/playback/play_rule.h"

namespace ostrevan::playback {

/// A path, and for a track of a CUE sheet the part of the file in seconds.
struct play_item {
    std::string path;
    std::optional<double> start;
    std::optional<double> end;
};

enum class audio_output {
    automatic,  ///< the best device, or none when none can be opened
    null,       ///< no device, in real time
};

struct play_options {
    audio_output audio = audio_output::automatic;
    /// Decodes at full speed; opens no device whatever `audio` says.
    bool fast = false;
    play_thresholds thresholds = {};
};

/// Events. `index` is the item's place in the list. Any may be empty. Called on the thread of `run`; an exception ends the
/// playback and leaves `run`.
struct play_callbacks {
    /// The item was opened and begins to sound.
    std::function<void(std::size_t index)> on_started;
    /// The item counts as played; once for each place in the list.
    std::function<void(std::size_t index)> on_counted;
    /// A started item has ended, or playback was stopped.
    std::function<void(std::size_t index)> on_finished;
    /// The item cannot be played, or not to its end; the list goes on. `text` is the reason, without the path.
    std::function<void(std::size_t index, const std::string& text)> on_error;
    /// Seconds from the start of the item; the duration is 0 when unknown. First called right after `on_started`.
    std::function<void(std::size_t index, double position, double duration)> on_progress;
    /// Whether the playback can be heard: false when a device was wanted and none could be opened.
    std::function<void(bool is_heard)> on_hearing;
    /// Called at least ten times a second, for other work of this thread.
    std::function<void()> on_turn;
};

/// Plays lists through libmpv. Single-threaded, not copyable. During `run` LC_NUMERIC of the process is "C", as libmpv
/// requires; no other thread may change the locale meanwhile.
class mpv_player {
public:
    mpv_player(play_options options, play_callbacks callbacks);
    mpv_player(const mpv_player&) = delete;
    mpv_player& operator=(const mpv_player&) = delete;

    /// Plays the items in order. Returns true at the end of the list, false when `stop` became true; a signal handler may
    /// set it, and it is noticed within a tenth of a second. Throws std::runtime_error when libmpv cannot start.
    bool run(std::span<const play_item> items, const std::atomic<bool>& stop);

    /// Moves within the current item, in seconds from its start. Only from a callback; does nothing when nothing plays.
    void seek(double position);

private:
    class session;

    play_options options_;
    play_callbacks callbacks_;
    session* session_ = nullptr;  // set and owned by `run`
};

}  // namespace ostrevan::playback
