#pragma once

#include <span>
#include <string>

#include "player/library/track.h"
#include "player/watch/observation.h"

namespace ostrevan::watch {

struct found_track {
    library::track_ptr track{};  ///< null when there is none
    bool is_by_location = false;
    std::string reason{};  ///< why there is none, as a clause
};

/// Finds the track of the library that a player tells of: by its location, also when a symbolic link or a second mount leads
/// to the file; else by its title, artist and, if told, album, when exactly one track has them. `library` is sorted by path.
/// Asks the disk. [any-thread]
found_track find_track(const told_track& told, std::span<const library::track_ptr> library);

}  // namespace ostrevan::watch
