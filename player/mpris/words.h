#pragma once

#include <array>

namespace ostrevan::mpris {

/// In a second.
constexpr double microseconds = 1e6;

/// By `playback::repeat_mode`.
constexpr std::array loop_words{"None", "Track", "Playlist"};

}  // namespace ostrevan::mpris
