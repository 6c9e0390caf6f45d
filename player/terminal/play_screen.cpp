#include "player/terminal/play_screen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <vector>

namespace ostrevan::terminal {
namespace {

using playback::repeat_mode;
using playback::shuffle_mode;

/// "4:05", and with hours "1:04:05".
std::string clock_text(double seconds) {
    const auto whole = static_cast<long long>(std::max(seconds, 0.0));
    std::array<char, 32> text{};
    if (whole < 3600) std::snprintf(text.data(), text.size(), "%lld:%02lld", whole / 60, whole % 60);
    else std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    return text.data();
}

/// What differs from a plain playback.
std::vector<std::string> modes_of(const playback::play_status& status) {
    constexpr std::array repeat{"", "repeat track", "repeat"};
    constexpr std::array shuffle{"", "shuffle", "shuffle albums"};
    const auto& modes = status.order.modes();
    return {status.is_paused ? "paused" : "", repeat[static_cast<std::size_t>(modes.repeat)],
            shuffle[static_cast<std::size_t>(modes.shuffle)], modes.stop_after ? "last track" : "",
            status.volume < 100 ? "volume " + std::to_string(std::lround(status.volume)) : ""};
}

}  // namespace

std::string play_screen::text_of(const titleformat::script& script, const metadb_handle_ptr& track) const {
    return script.run(titleformat::track_fields(context_.player.fields, *track)).text;
}

void play_screen::on_started(const app::now_playing& now) {
    show([this, now] {
        context_.screen.note("Playing " + std::to_string(now.place + 1) + " of " + std::to_string(tracks_) + ": " +
                             text_of(title_, now.track));
    });
}

void play_screen::on_progress(const app::now_playing& now, const playback::play_status& status) {
    if (!progress_.put({now, status})) return;
    show([this] {
        const auto shown = progress_.take();
        const auto length = shown.now.duration > 0 ? " / " + clock_text(shown.now.duration) : "";
        std::vector details{clock_text(shown.now.position) + length, text_of(rating_, shown.now.track)};
        std::ranges::move(modes_of(shown.status), std::back_inserter(details));
        context_.screen.show_line(text_of(title_, shown.now.track), details);
    });
}

void play_screen::on_counted(const metadb_handle_ptr& track) {
    show([this, track] {
        ++counted_;
        context_.out << "Counted: " << text_of(title_, track) << std::endl;
    });
}

void play_screen::on_not_counted(const metadb_handle_ptr& track, const std::string& reason) {
    show([this, track, reason] {
        context_.out << "Played, not counted: " << text_of(title_, track) << ": " << reason << std::endl;
    });
}

void play_screen::on_failure(const std::string& text) {
    show([this, text] { context_.screen.error(text); });
}

void play_screen::on_ended(bool is_replaced) {
    show([this, is_replaced] {
        has_ended_ = true;
        is_replaced_ = is_replaced;
    });
}

}  // namespace ostrevan::terminal
