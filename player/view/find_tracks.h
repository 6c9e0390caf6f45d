#pragma once

#include <string>

#include "ostrevan/track.h"
#include "player/library/media_library.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// The library tracks that match a query, in its sort order, else by location. Throws `query::query_error` when the query
/// has a mistake.
metadb_handle_list find_tracks(const library::media_library& library, const titleformat::component_fields& fields,
                               const std::string& query);

}  // namespace ostrevan::view
