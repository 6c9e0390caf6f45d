#include "player/view/track_listing.h"

#include <utility>

namespace ostrevan::view {

track_listing::track_listing(metadb_handle_list tracks, std::vector<column> columns,
                             const titleformat::component_fields& fields)
    : tracks_(std::move(tracks)), columns_(std::move(columns)), fields_(&fields) {
    scripts_.reserve(columns_.size());
    for (const auto& column : columns_) scripts_.push_back(titleformat::compile(column.display_script));
}

void track_listing::format_row(std::size_t row, std::vector<std::string>& cells) const {
    const titleformat::track_fields values(*fields_, *tracks_[row]);
    cells.resize(scripts_.size());
    for (std::size_t i = 0; i < scripts_.size(); ++i) {
        cells[i].clear();
        scripts_[i].run(values, cells[i]);
    }
}

}  // namespace ostrevan::view
