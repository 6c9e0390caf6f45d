#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ostrevan/track.h"
#include "player/library/queue_store.h"
#include "player/playback/mpv_player.h"

namespace ostrevan::app {

/// A list of tracks, and where it is played from.
struct play_start {
    metadb_handle_list tracks{};  ///< by entry
    playback::queue order;
    double seconds = 0;  ///< into the first track
    double volume = 100;
};

/// Saves the queue of a playback in the profile as it changes, on the thread of the playback.
class kept_queue {
public:
    /// `on_failure` is called at most once.
    kept_queue(library::queue_store& store, std::function<void(const std::string& text)> on_failure)
        : store_(store), on_failure_(std::move(on_failure)) {}

    void begin(const metadb_handle_list& tracks, const playback::play_status& status, double seconds);
    /// The tracks of the entries that the next status adds.
    void add(const metadb_handle_list& tracks);
    // These save a new list or order at once, and the rest at most once a second.
    void on_status(const playback::play_status& status);
    void on_progress(std::size_t entry, double seconds);
    /// `is_over` when the end of the list was reached.
    void end(bool is_over);

private:
    void save(const std::function<void()>& work);
    void save_list();
    void save_state(double seconds);
    void update();
    [[nodiscard]] library::queue_state state_at(double seconds) const;
    [[nodiscard]] double seconds_of_current() const;
    [[nodiscard]] std::vector<std::uint32_t> positions_of(const playback::queue::entries& entries) const;

    library::queue_store& store_;
    const std::function<void(const std::string& text)> on_failure_;
    std::optional<playback::play_status> status_;
    std::size_t entry_ = 0;                     // that sounds
    double seconds_ = 0;                        // into it
    std::vector<playable_location> locations_;  // by entry
    // As they are saved.
    std::vector<std::optional<std::uint32_t>> positions_;  // in the list, by entry
    playback::queue::entries list_;
    playback::queue::entries round_;
    std::chrono::steady_clock::time_point saved_{};
    bool has_failed_ = false;
};

}  // namespace ostrevan::app
