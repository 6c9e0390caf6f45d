#include "player/watch/listener.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ostrevan::watch {
namespace {

using playback::end_reason;

/// Seconds by which positions, lengths and signals of players are wrong.
constexpr double slack = 2;
/// A player that says "0" for as long, or nothing, while it plays does not know its position: the clock decides.
constexpr double patience = 10;
/// Seconds to be heard of a track that is then skipped.
constexpr double least_of_skip = 5;
/// Longer "lengths" are those of live broadcasts; later positions are nonsense.
constexpr double longest = 1e6;

bool is_file(const std::string& location) { return location.starts_with('/') || location.starts_with("file:"); }

bool is_possible(double position) { return std::isfinite(position) && position < longest; }

bool has_no_text(const told_track& track) { return track.title.empty() && track.artist.empty() && track.album.empty(); }

enum class likeness { same, same_unless_from_the_start, other };

/// Players repeat, complete and correct what they tell of a track. A file is its location. Elsewhere, the title tells one
/// from the next.
likeness compare(const told_track& before, const told_track& now, bool has_position) {
    if (before.location != now.location) return likeness::other;
    if (!is_file(now.location)) {
        const bool is_same = before.title == now.title && before.artist == now.artist;
        const bool is_other_entry = !before.id.empty() && !now.id.empty() && before.id != now.id;
        const bool can_tell_by_position = before.length > 0 && has_position && !is_other_entry;
        if (!is_same && !has_no_text(before))
            return can_tell_by_position ? likeness::same_unless_from_the_start : likeness::other;
    }
    return before.id == now.id ? likeness::same : likeness::same_unless_from_the_start;
}

}  // namespace

void listener::hear(double time, const news& what) {
    if (state_ == play_state::playing) due_ += std::max(time - time_, 0.0) * rate_;
    time_ = time;
    std::visit([this](const auto& heard) { on(heard); }, what);
}

void listener::set_length() {
    const bool is_sane = track_.length > 0 && track_.length < longest;
    const double known = report_.true_length ? report_.true_length(track_) : 0;
    if (known > 0) length_ = known;
    else length_ = is_sane ? track_.length : 0;
    rule_.loaded(length_);
}

bool listener::is_over() const { return length_ > 0 && expected() >= length_ - std::min(slack, length_ / 2); }

void listener::begin() {
    rule_.started();
    set_length();
    began_ = time_;
    position_ = 0;
    due_ = 0;
    is_under_way_ = true;
    is_placed_ = false;
    is_by_clock_ = false;
    is_told_ = false;
}

void listener::end() {
    if (!is_under_way_) return;
    is_under_way_ = false;
    if (rule_.ended(is_over() ? end_reason::finished : end_reason::stopped))
        report_.on_counted(track_, rule_.listened(), began_);
}

void listener::end_and_begin() {
    end();
    if (next_) track_ = *std::exchange(next_, std::nullopt);
    begin();
    is_placed_ = true;
}

void listener::describe(const told_track& track) {
    const bool is_news = track_ != track;
    track_ = track;
    set_length();
    if (is_told_ && is_under_way_ && is_news) report_.on_playing(track_, false);
}

void listener::step_to(double position) {
    // The first positions after a change may be those of the track before.
    if (next_ && time_ - next_time_ >= slack) describe(*std::exchange(next_, std::nullopt));
    const bool counts = rule_.position(position);
    position_ = position;
    due_ = 0;
    const bool is_something = !track_.location.empty() || !track_.title.empty();  // browsers play nothing in particular
    if (!is_told_ && is_something && rule_.listened() >= 1) {
        is_told_ = true;
        report_.on_playing(track_, true);
    }
    if (counts) report_.on_counted(track_, rule_.listened(), began_);
}

void listener::jump_to(double position) {
    rule_.seek();
    rule_.restart();
    step_to(position);
}

void listener::move_to(double position) {
    const bool is_back = position < position_ - 0.5;
    const bool is_beyond = position > expected() + slack;
    const double since_end = length_ > 0 ? std::clamp(expected() - length_, 0.0, due_) : 0;
    const bool is_again = is_back && position <= since_end + slack && (next_ || is_over());
    if (is_again) end_and_begin();
    if (is_again || !(is_back || is_beyond)) step_to(position);
    else jump_to(position);
}

void listener::on(const has_track& heard) {
    const auto alike = compare(next_.value_or(track_), heard.track, is_placed_);
    if (alike == likeness::other) {
        if (is_surely_left() && rule_.left(expected() + slack) && report_.on_skipped)
            report_.on_skipped(track_, rule_.listened(), began_);
        end();
        next_.reset();
        track_ = heard.track;
        if (state_ == play_state::playing) begin();
    } else if (alike == likeness::same_unless_from_the_start && is_under_way_) {
        expect(heard.track);
    } else {
        if (next_) next_ = heard.track;
        else describe(heard.track);
    }
}

/// Players say no more of a skip than that another track plays. A player that stopped, that does not know its position, or
/// that just began again, since it tells of the next track late, may have had other reasons.
bool listener::is_surely_left() const {
    return is_under_way_ && state_ == play_state::playing && is_placed_ && !is_by_clock_ && !next_ &&
           rule_.listened() >= least_of_skip;
}

void listener::expect(const told_track& track) {
    next_ = track;
    next_time_ = time_;
}

void listener::on(const has_state& heard) {
    const bool was_stopped = state_ == play_state::stopped;
    state_ = heard.state;
    if (state_ == play_state::stopped && is_over()) end();
    if (state_ != play_state::playing) return;
    if (!is_under_way_) begin();
    else if (was_stopped && !next_) expect(track_);
}

void listener::on(const has_rate& heard) { rate_ = heard.rate > 0 && std::isfinite(heard.rate) ? heard.rate : 1; }

void listener::on(const is_at& heard) {
    const double position = heard.position.value_or(0);
    if (!is_under_way_ || !is_possible(position)) return;
    const bool has_moved = position_ > 0 && !is_by_clock_;
    if (!heard.position || (position <= 0 && !has_moved)) {
        is_by_clock_ |= due_ >= patience && !is_placed_;
        if (is_by_clock_) step_to(expected());
        else if (is_placed_) due_ = std::min(due_, patience);  // a player that hangs is silent
        return;
    }
    is_by_clock_ = false;
    // Just after a change, players still tell the position in the track before.
    if (!is_placed_ && position > expected() + slack && due_ < slack) return;
    is_placed_ = true;
    move_to(position);
}

void listener::on(const has_jumped& heard) {
    if (!is_under_way_ || !is_possible(heard.position)) return;
    is_placed_ = true;
    const bool is_expected = std::abs(heard.position - expected()) <= 1;
    if (is_expected || (heard.position <= slack && is_over())) move_to(heard.position);
    else jump_to(heard.position);
}

void listener::on(const is_out_of_reach&) { state_ = play_state::stopped; }

void listener::on(const has_gone&) { end(); }

}  // namespace ostrevan::watch
