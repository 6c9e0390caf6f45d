#pragma once

#include <string>
#include <vector>

#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// The tracks in an M3U file. Reports entries that it leaves out; throws when none remains. Only local audio files are
/// taken, and nothing in the network is opened.
std::vector<playable_location> read_playlist_file(run_context& context, const std::string& path);

/// Writes entries as an M3U file. Asks before it replaces a file, and returns false when declined.
bool write_playlist_file(run_context& context, const std::vector<playable_location>& entries, const std::string& path);

}  // namespace ostrevan::terminal
