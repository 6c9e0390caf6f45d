#pragma once

#include <optional>

namespace ostrevan::playback {

/// When a track counts as played.
struct play_thresholds {
    /// Share of the length that must be heard, 0 to 1.
    double share = 0.5;
    /// Seconds after which any track counts, whatever its length.
    double seconds = 240;
    /// Tracks shorter than this many seconds count only when heard to their end.
    double short_track = 30;
};

/// Why a track stopped.
enum class end_reason {
    finished,  ///< its end was reached
    stopped,   ///< the listener left it
    failed,    ///< decoding failed
};

/// Decides whether a track was played, from the reports of a player. Only time listened to counts: steps of the position
/// add up, a seek adds nothing. Says yes at most once per track.
///
/// Positions may be rare: a step counts as heard however large it is, and a track without a seek that reached its end was
/// heard in full even if no position was reported.
class play_rule {
public:
    explicit play_rule(play_thresholds thresholds = {}) noexcept : thresholds_(thresholds) {}

    /// A new track begins; the state of the previous one is dropped.
    void started() noexcept;
    /// The length in seconds; 0 or less for a stream without one.
    void loaded(double duration) noexcept;
    /// A jump begins; positions mean nothing until `restart`.
    void seek() noexcept;
    /// The sound is back; the next position is where it resumes.
    void restart() noexcept;

    /// Position in seconds from the start of the track. Returns true at the moment the track counts.
    [[nodiscard]] bool position(double seconds) noexcept;
    /// Returns true when the end makes the track count.
    [[nodiscard]] bool ended(end_reason reason) noexcept;

    /// The listener leaves the track at this position. Returns true when that skips it: in the first half, and before it
    /// counts.
    [[nodiscard]] bool left(double position) noexcept;

    /// Seconds of the current track listened to.
    [[nodiscard]] double listened() const noexcept { return listened_; }

private:
    [[nodiscard]] bool is_short() const noexcept { return duration_ > 0 && duration_ < thresholds_.short_track; }
    [[nodiscard]] bool enough() const noexcept;
    bool count() noexcept;

    play_thresholds thresholds_;
    double duration_ = 0;
    double listened_ = 0;
    std::optional<double> last_ = 0;  // where the last step ended; empty from a seek to the first position after it
    bool playing_ = false;
    bool seeking_ = false;
    bool sought_ = false;
    bool counted_ = false;
};

}  // namespace ostrevan::playback
