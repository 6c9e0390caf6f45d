#pragma once

#include <string>

#include "ostrevan/track.h"
#include "player/library/media_library.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// The tracks that a query matches among all tracks of the library, in its order of sorting, else by location. Throws
/// `query::query_error` when the query has a mistake.
metadb_handle_list find_tracks(const library::media_library& library, const titleformat::component_fields& fields,
                               const std::string& query);

}  // namespace ostrevan::view
