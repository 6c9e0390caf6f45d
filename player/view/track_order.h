#pragma once

#include <vector>

#include "ostrevan/track.h"
#include "player/query/query.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::view {

/// Tracks that compare equal keep their order; those without anything to sort by come last.
metadb_handle_list sorted_by(const query::sort_order& order, const metadb_handle_list& tracks,
                             const titleformat::component_fields& fields);

/// The order in which one listens to a folder: subfolders by name, in each the albums by title, their tracks by disc and
/// track number, and by name where there are no numbers. Numbers in names count as such: 2 comes before 10.
void sort_for_listening(std::vector<metadb_handle_ptr>& tracks);

}  // namespace ostrevan::view
