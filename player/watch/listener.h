#pragma once

#include <functional>
#include <optional>

#include "player/playback/play_rule.h"
#include "player/watch/observation.h"

namespace ostrevan::watch {

/// Makes plays of what is heard of one player, and gives them to the play rule.
///
/// Time heard is how far the position moved, limited by the clock: a longer way is a jump. A track begins when another
/// one is told, or when the position goes back to the beginning from the end, however the player tells of that.
class listener {
public:
    struct events {
        /// A second of a new play was heard, or the player tells something else of its track since.
        std::function<void(const told_track&, bool is_new)> on_playing;
        /// The track counts as played, after `heard` seconds; it began at `began` by the clock of the observations.
        std::function<void(const told_track&, double heard, double began)> on_counted;
        /// The listener went on to another track in the first half, after `heard` seconds.
        std::function<void(const told_track&, double heard, double began)> on_skipped{};
        /// The length of the file in seconds, which players guess at; 0 when unknown.
        std::function<double(const told_track&)> true_length{};
    };

    explicit listener(events report, playback::play_thresholds thresholds = {})
        : report_(std::move(report)), rule_(thresholds) {}

    void hear(double time, const news& what);

private:
    void on(const has_track& heard);
    void on(const has_state& heard);
    void on(const has_rate& heard);
    void on(const is_at& heard);
    void on(const has_jumped& heard);
    void on(const is_out_of_reach& heard);
    void on(const has_gone& heard);
    void on(const has_trouble&) {}

    /// Whether the track must be at its end now.
    [[nodiscard]] bool is_over() const;
    [[nodiscard]] double expected() const { return position_ + due_; }
    void begin();
    void end();
    void end_and_begin();
    void move_to(double position);
    void jump_to(double position);
    void step_to(double position);
    void describe(const told_track& track);
    void set_length();
    void expect(const told_track& track);
    [[nodiscard]] bool is_surely_left() const;

    const events report_;
    playback::play_rule rule_;
    told_track track_;  // of the play under way, or of the next one
    play_state state_ = play_state::stopped;
    double rate_ = 1;
    double length_ = 0;               // seconds; 0 when unknown
    double time_ = 0;                 // of the last observation
    double began_ = 0;                // when the play under way began
    double position_ = 0;             // last known
    double due_ = 0;                  // seconds of sound since then, by the clock
    bool is_under_way_ = false;       // the track has begun, and not ended
    bool is_placed_ = false;          // the position is known to be of this track
    bool is_by_clock_ = false;        // the player does not know its position
    bool is_told_ = false;            // on_playing was called
    std::optional<told_track> next_;  // begins if the position goes back to the beginning; else a better description
    double next_time_ = 0;            // when it was told
};

}  // namespace ostrevan::watch
