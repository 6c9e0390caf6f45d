#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "player/playback/play_rule.h"

namespace ostrevan::playback {

/// What to play: a path, and for a track of a CUE sheet the part of the file in seconds.
struct play_item {
    std::string path;
    std::optional<double> start;
    std::optional<double> end;
};

enum class audio_output {
    automatic,  ///< the best device there is, or none when none can be opened
    null,       ///< no device, in real time
};

struct play_options {
    audio_output audio = audio_output::automatic;
    /// Decodes as fast as it can; opens no device whatever `audio` says.
    bool fast = false;
    play_thresholds thresholds = {};
};

/// What the player reports. `index` is the item's place in the list. Each may be empty. They are called on the thread of
/// `run`, and what they throw leaves `run`, which ends the playback.
struct play_callbacks {
    /// The item could be opened and begins to sound.
    std::function<void(std::size_t index)> on_started;
    /// The item counts as played; once for each time it stands in the list.
    std::function<void(std::size_t index)> on_counted;
    /// An item that had started is over, by its end or because playback was stopped.
    std::function<void(std::size_t index)> on_finished;
    /// The item cannot be played, or not to its end; the list goes on. `text` says why, without the path.
    std::function<void(std::size_t index, const std::string& text)> on_error;
    /// Both in seconds, counted from the start of the item; the duration is 0 when it is unknown.
    /// Comes first right after `on_started`.
    std::function<void(std::size_t index, double position, double duration)> on_progress;
    /// What plays is not heard, since no device could be opened although one was wanted; or it is heard again.
    std::function<void(bool is_heard)> on_hearing;
    /// Comes at least ten times a second, for whatever else this thread has to do.
    std::function<void()> on_turn;
};

/// Plays lists through libmpv. Of one thread, and not copied. While `run` lasts, the process's LC_NUMERIC is "C", which
/// libmpv asks for; no other thread may change the locale meanwhile.
class mpv_player {
public:
    mpv_player(play_options options, play_callbacks callbacks);
    mpv_player(const mpv_player&) = delete;
    mpv_player& operator=(const mpv_player&) = delete;

    /// Plays the items in order. Returns true when the list is through, false when `stop` became true, which is noticed
    /// within a tenth of a second and may be set by a signal handler. Throws std::runtime_error when libmpv cannot start.
    bool run(std::span<const play_item> items, const std::atomic<bool>& stop);

    /// Moves within the current item, seconds from its start. Only from a callback; does nothing when nothing plays.
    void seek(double position);

private:
    class session;

    play_options options_;
    play_callbacks callbacks_;
    session* session_ = nullptr;  // while `run` lasts, owned by it
};

}  // namespace ostrevan::playback
