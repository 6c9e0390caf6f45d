#pragma once

#include <string>
#include <vector>

#include "ostrevan/track.h"
#include "player/query/query.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// Parses a query for these tracks. Throws `query::query_error` when it has a mistake. [any-thread]
query::query parse_query(const std::vector<metadb_handle_ptr>& items, const titleformat::component_fields& fields,
                         const std::string& text);

/// The tracks that match a query, in its sort order, else by location. [any-thread]
metadb_handle_list find_tracks(const std::vector<metadb_handle_ptr>& items, const titleformat::component_fields& fields,
                               const query::query& wanted);

}  // namespace ostrevan::view
