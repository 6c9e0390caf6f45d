#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/front/session.h"
#include "player/query/query.h"

namespace ostrevan::front {

/// The tracks that a query matches among all tracks of the library, in its order of sorting, else by location. Throws
/// `query::query_error` when the query has a mistake.
metadb_handle_list find_tracks(session& player, const std::string& query);

/// A location as a user writes it: `path` or `path|subsong`; a file name with "|" in it stands for itself when it is there.
playable_location parse_location(std::string_view text);

/// The tracks at these places: a file, one subsong, all subsongs of a CUE sheet, or everything of the library below a
/// folder. A file that is not in the library is read from the disk. Throws with a message that names the place when there is
/// nothing.
metadb_handle_list tracks_at(session& player, const std::vector<std::string>& places);

}  // namespace ostrevan::front
