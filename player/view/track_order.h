#pragma once

#include <vector>

#include "ostrevan/track.h"
#include "player/query/query.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// Equal tracks keep their order; those with nothing to sort by come last.
metadb_handle_list sorted_by(const query::sort_order& order, const metadb_handle_list& tracks,
                             const titleformat::component_fields& fields);

/// Sorts folders by name; in each, albums by title, then tracks by disc and track number, or by name without numbers.
/// Numbers in names sort by value: 2 comes before 10.
void sort_for_listening(std::vector<metadb_handle_ptr>& tracks);

}  // namespace ostrevan::view
