#pragma once

#include <string>
#include <vector>

#include "player/front/session.h"

namespace ostrevan::front {

/// The tracks of the library that a query matches, as the search of the library finds them.
metadb_handle_list find_tracks(session& player, const std::string& query);

/// The tracks at these places: a file, one subsong, all subsongs of a CUE sheet, or everything of the library below a
/// folder. A file that is not in the library is read from the disk. Throws with a message that names the place when there is
/// nothing.
metadb_handle_list tracks_at(session& player, const std::vector<std::string>& places);

}  // namespace ostrevan::front
