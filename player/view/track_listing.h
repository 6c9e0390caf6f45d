#pragma once

#include <string>
#include <vector>

#include "player/titleformat/track_fields.h"
#include "player/view/columns.h"

namespace ostrevan::view {

/// A list of tracks as it is shown.
struct track_listing {
    std::vector<column> columns;
    /// One a track, with one text a column.
    std::vector<std::vector<std::string>> rows;
};

/// Throws `titleformat::script_error` when the script of a column has a mistake.
track_listing listing_of(const metadb_handle_list& tracks, std::vector<column> columns,
                         const titleformat::component_fields& fields);

}  // namespace ostrevan::view
