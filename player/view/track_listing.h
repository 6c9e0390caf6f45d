#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "player/titleformat/track_fields.h"
#include "player/view/columns.h"

namespace ostrevan::view {

/// A list of tracks as displayed, one row per track. Rows are formatted when asked for: a large list holds none of its
/// texts.
class track_listing {
public:
    /// Throws `titleformat::script_error` for a mistake in a column's script. The fields must outlive the listing.
    track_listing(metadb_handle_list tracks, std::vector<column> columns, const titleformat::component_fields& fields);

    [[nodiscard]] const std::vector<column>& columns() const noexcept { return columns_; }
    [[nodiscard]] const metadb_handle_list& tracks() const noexcept { return tracks_; }
    [[nodiscard]] std::size_t row_count() const noexcept { return tracks_.get_count(); }
    /// Replaces `cells` by one text per column. [any-thread]
    void format_row(std::size_t row, std::vector<std::string>& cells) const;

private:
    metadb_handle_list tracks_;
    std::vector<column> columns_;
    std::vector<titleformat::script> scripts_;
    const titleformat::component_fields* fields_;
};

inline track_listing listing_of(metadb_handle_list tracks, std::vector<column> columns,
                                const titleformat::component_fields& fields) {
    return {std::move(tracks), std::move(columns), fields};
}

}  // namespace ostrevan::view
