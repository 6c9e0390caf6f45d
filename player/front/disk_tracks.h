#pragma once

#include <string>
#include <vector>

#include "player/library/track_table.h"

namespace ostrevan::front {

/// The tracks of a file that the library does not hold: read from the disk, and known to the player until it ends. Throws
/// with the reason when the file cannot be read.
std::vector<library::track_ptr> tracks_on_disk(library::track_table& tracks, const std::string& path);

}  // namespace ostrevan::front
