#pragma once

#include <string>
#include <vector>

#include "player/app/session.h"

namespace ostrevan::app {

/// The tracks of the library that a query matches, as the search of the library finds them.
metadb_handle_list find_tracks(session& player, const std::string& query);

/// What stands at the places that a user names.
struct selection {
    metadb_handle_list tracks{};
    /// Files that are none of ours by their names, such as a cover.
    std::vector<std::string> no_audio{};
    /// What is not there or cannot be read, a sentence each that names it.
    std::vector<std::string> problems{};
};

/// The tracks at these places: a file, one subsong, all subsongs of a CUE sheet, or everything below a folder in the order
/// of listening. What is not in the library is read from the disk.
selection tracks_at(session& player, const std::vector<std::string>& places);

}  // namespace ostrevan::app
