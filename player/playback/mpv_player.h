#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "player/playback/actions.h"
#include "player/playback/play_rule.h"
#include "player/playback/queue.h"

namespace ostrevan::playback {

/// A path, and for a track of a CUE sheet the part of the file in seconds.
struct play_item {
    std::string path;
    std::optional<double> start;
    std::optional<double> end;
    /// Why it cannot be played; empty when nothing is known against it.
    std::string problem{};
};

enum class audio_output {
    automatic,  ///< the best device, or none when none can be opened
    null,       ///< no device, in real time
};

enum class replay_gain { off, track, album };

struct play_options {
    audio_output audio = audio_output::automatic;
    /// Decodes at full speed; opens no device whatever `audio` says.
    bool fast = false;
    play_thresholds thresholds = {};
    replay_gain gain = replay_gain::off;
    double volume = 100;  ///< percent
    double start_at = 0;  ///< seconds into the first item
};

struct play_status {
    queue order;
    double volume = 100;
    bool is_paused = false;
    std::size_t edits = 0;  ///< of the list, since the playback began
};

/// A change of the list while it is played.
struct queue_edit {
    /// The items of the entries that the change adds, in the same order.
    std::vector<play_item> added{};
    /// Called on the thread of `run`. What it throws is passed on, and the list stays as it was. Returns false when the
    /// playback is over.
    std::function<bool(queue& order)> change;
    /// Kept when everybody has been told of the new status; broken when the playback ends before.
    std::promise<void> done{};
};

/// Events. `index` is the item's entry in the queue. Any may be empty. Called on the thread of `run`; an exception ends the
/// playback and leaves `run`.
struct play_callbacks {
    /// The item was opened and begins to sound.
    std::function<void(std::size_t index)> on_started;
    /// The item counts as played; once each time it is heard.
    std::function<void(std::size_t index, double heard)> on_counted;
    /// The listener left the item for another one in its first half, after `heard` seconds, and it does not count as played.
    std::function<void(std::size_t index, double heard)> on_skipped;
    /// A started item has ended, or playback was stopped.
    std::function<void(std::size_t index)> on_finished;
    /// The item cannot be played, or not to its end; the list goes on. `text` is the reason, without the path.
    std::function<void(std::size_t index, const std::string& text)> on_error;
    /// Seconds from the start of the item; the duration is 0 when unknown. First called right after `on_started`.
    std::function<void(std::size_t index, double position, double duration)> on_progress;
    /// Before `on_started`, when the listener changes something, and before `run` returns.
    std::function<void(const play_status& status)> on_status;
    /// Whether the playback can be heard: false when a device was wanted and none could be opened.
    std::function<void(bool is_heard)> on_hearing;
    /// Called at least ten times a second, for other work of this thread.
    std::function<void()> on_turn;
};

/// Plays lists through libmpv. Single-threaded but for `perform`, not copyable. During `run` LC_NUMERIC of the process is
/// "C", as libmpv requires; no other thread may change the locale meanwhile.
class mpv_player {
public:
    mpv_player(play_options options, play_callbacks callbacks);
    mpv_player(const mpv_player&) = delete;
    mpv_player& operator=(const mpv_player&) = delete;

    /// Plays the items, which are those of the entries, from the current one of `order`. Returns true at the end, false when
    /// the listener quits or `stop` became true; a signal handler may set it, and it is noticed within a tenth of a second.
    /// Ends when every item of the list in a row has failed. Throws std::runtime_error when libmpv cannot start.
    bool run(std::vector<play_item> items, queue order, const std::atomic<bool>& stop);

    // [any-thread]
    /// Carries out what concerns the playback, and ignores the rest.
    void perform(const request& wanted);
    /// Before `run`, it waits for that. Edits are made in the order of the calls.
    void edit(queue_edit wanted);

private:
    class session;
    using task = std::function<void(session&)>;
    void pass(task work);

    play_options options_;
    play_callbacks callbacks_;
    std::mutex mutex_;  // of the following
    std::vector<task> tasks_;
    session* session_ = nullptr;  // set and owned by `run`
};

}  // namespace ostrevan::playback
