#include "player/terminal/playback_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace ostrevan::terminal {

std::string clock_text(double seconds) {
    const auto whole = static_cast<long long>(std::max(seconds, 0.0));
    std::array<char, 32> text{};
    if (whole < 3600) std::snprintf(text.data(), text.size(), "%lld:%02lld", whole / 60, whole % 60);
    else std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    return text.data();
}

std::string count_text(std::size_t tracks) { return std::to_string(tracks) + (tracks == 1 ? " track" : " tracks"); }

std::string place_text(playback::queue::entry entry, const playback::play_status& status) {
    return std::to_string(status.order.place_of(entry).value_or(0) + 1) + " of " + std::to_string(status.order.size());
}

std::vector<std::string> modes_of(const playback::play_status& status) {
    constexpr std::array repeat{"", "repeat track", "repeat"};
    constexpr std::array shuffle{"", "shuffle", "shuffle albums"};
    const auto& modes = status.order.modes();
    return {status.is_paused ? "paused" : "", repeat[static_cast<std::size_t>(modes.repeat)],
            shuffle[static_cast<std::size_t>(modes.shuffle)], modes.stop_after ? "last track" : "",
            status.volume < 100 ? "volume " + std::to_string(std::lround(status.volume)) : ""};
}

}  // namespace ostrevan::terminal
