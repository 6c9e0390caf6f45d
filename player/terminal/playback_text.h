#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "player/playback/mpv_player.h"

namespace ostrevan::terminal {

/// "4:05", and with hours "1:04:05".
std::string clock_text(double seconds);

/// "1 track" or "8 tracks".
std::string count_text(std::size_t tracks);

/// The place of an entry in the list, as "2 of 8".
std::string place_text(playback::queue::entry entry, const playback::play_status& status);

/// What differs from a plain playback; some are empty.
std::vector<std::string> modes_of(const playback::play_status& status);

}  // namespace ostrevan::terminal
