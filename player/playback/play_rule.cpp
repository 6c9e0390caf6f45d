#include "player/playback/play_rule.h"

#include <algorithm>
#include <cmath>

namespace ostrevan::playback {

void play_rule::started() noexcept {
    *this = play_rule(thresholds_);
    playing_ = true;
}

void play_rule::loaded(double duration) noexcept { duration_ = std::isfinite(duration) ? std::max(duration, 0.0) : 0.0; }

void play_rule::seek() noexcept {
    seeking_ = true;
    sought_ = true;
    last_.reset();
}

void play_rule::restart() noexcept { seeking_ = false; }

bool play_rule::position(double seconds) noexcept {
    if (!playing_ || seeking_ || !std::isfinite(seconds)) return false;
    if (last_ && seconds > *last_) listened_ += seconds - *last_;
    last_ = seconds;
    return !is_short() && enough() && count();
}

bool play_rule::ended(end_reason reason) noexcept {
    if (!playing_) return false;
    const bool finished = reason == end_reason::finished;
    if (finished && !sought_) listened_ = std::max(listened_, duration_);
    else if (finished && last_) listened_ += std::max(duration_ - *last_, 0.0);
    // Without a length there is no share, so reaching the end uninterrupted counts as the whole.
    const bool heard_whole = finished && !sought_;
    const bool counts = heard_whole || (is_short() ? finished && enough() : enough());
    const bool first_time = counts && count();
    playing_ = false;
    return first_time;
}

bool play_rule::left(double position) noexcept {
    const bool is_skipped = playing_ && !counted_ && position < duration_ / 2;
    if (is_skipped) playing_ = false;
    return is_skipped;
}

bool play_rule::enough() const noexcept {
    const double needed = duration_ > 0 ? std::min(duration_ * thresholds_.share, thresholds_.seconds) : thresholds_.seconds;
    return listened_ >= needed;
}

bool play_rule::count() noexcept {
    const bool first_time = !counted_;
    counted_ = true;
    return first_time;
}

}  // namespace ostrevan::playback
