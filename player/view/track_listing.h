#pragma once

#include <string>
#include <vector>

#include "player/titleformat/track_fields.h"
#include "player/view/columns.h"

namespace ostrevan::view {

/// A list of tracks as displayed.
struct track_listing {
    std::vector<column> columns;
    /// One row per track, one text per column.
    std::vector<std::vector<std::string>> rows;
};

/// Throws `titleformat::script_error` for a mistake in a column's script.
track_listing listing_of(const metadb_handle_list& tracks, std::vector<column> columns,
                         const titleformat::component_fields& fields);

}  // namespace ostrevan::view
