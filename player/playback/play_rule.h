#pragma once

#include <optional>

namespace ostrevan::playback {

/// When a track counts as played.
struct play_thresholds {
    /// Part of the length that must have been heard, 0 to 1.
    double share = 0.5;
    /// Seconds after which any track counts, however long it is.
    double seconds = 240;
    /// Tracks shorter than this many seconds count only when they are heard to their end.
    double short_track = 30;
};

/// Why a track stopped.
enum class end_reason {
    finished,  ///< its end was reached
    stopped,   ///< the listener left it
    failed,    ///< it could not be decoded any further
};

/// Decides from what a player reports of one track after another whether the track was played. What counts is time really
/// listened to: the steps of the position add up, a seek adds nothing. Says yes at most once a track.
///
/// A player reports positions as seldom as it likes: a step is taken as heard however large it is, and a track that was
/// never sought in and reached its end was heard in full even if no position was reported at all.
class play_rule {
public:
    explicit play_rule(play_thresholds thresholds = {}) noexcept : thresholds_(thresholds) {}

    /// A new track begins; whatever was known of the one before is dropped.
    void started() noexcept;
    /// The length in seconds is known now; 0 or less for a stream without one.
    void loaded(double duration) noexcept;
    /// A jump begins; positions mean nothing until `restart`.
    void seek() noexcept;
    /// Sound comes again; the next position is where it does.
    void restart() noexcept;

    /// Position in seconds from the start of the track. True when the track counts from now on.
    [[nodiscard]] bool position(double seconds) noexcept;
    /// True when it is the end that makes the track count.
    [[nodiscard]] bool ended(end_reason reason) noexcept;

    /// Seconds of the current track that were listened to.
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
