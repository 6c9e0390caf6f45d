#pragma once

#include <string_view>

#include "player/library/media_library.h"
#include "player/query/query.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// Throws `query::query_error` for a query that compares or sorts by a field that is neither the player's, nor a
/// component's, nor a usual tag, nor had by any track of the library. `source` is the query's text.
void check_fields(const query::query& query, std::string_view source, const library::media_library& library,
                  const titleformat::component_fields& fields);

}  // namespace ostrevan::view
