#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/track.h"
#include "player/query/query.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// The fields that a user may expect, in order: usual tags, what the player derives from a file, what components publish.
std::vector<std::string> usual_and_published(const titleformat::component_fields& fields);

/// Throws `query::query_error` for a query that compares or sorts by an unknown field: not the player's, a component's, a
/// common tag, or a field of some of the tracks. `source` is the text of the query.
void check_fields(const query::query& query, std::string_view source, const std::vector<metadb_handle_ptr>& items,
                  const titleformat::component_fields& fields);

}  // namespace ostrevan::view
