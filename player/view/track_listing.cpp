#include "player/view/track_listing.h"

#include <utility>

#include "player/titleformat/script.h"

namespace ostrevan::view {

track_listing listing_of(const metadb_handle_list& tracks, std::vector<column> columns,
                         const titleformat::component_fields& fields) {
    track_listing listing{std::move(columns), {}};
    std::vector<titleformat::script> scripts;
    for (const auto& column : listing.columns) scripts.push_back(titleformat::compile(column.display_script));
    listing.rows.reserve(tracks.get_count());
    for (const auto& track : tracks) {
        const titleformat::track_fields values(fields, *track);
        auto& cells = listing.rows.emplace_back();
        cells.reserve(scripts.size());
        for (const auto& script : scripts) cells.push_back(script.run(values).text);
    }
    return listing;
}

}  // namespace ostrevan::view
