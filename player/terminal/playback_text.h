#pragma once

#include <string>
#include <vector>

#include "player/playback/mpv_player.h"

namespace ostrevan::terminal {

/// "4:05", and with hours "1:04:05".
std::string clock_text(double seconds);

/// What differs from a plain playback; some are empty.
std::vector<std::string> modes_of(const playback::play_status& status);

}  // namespace ostrevan::terminal
