#pragma once

#include <string>
#include <vector>

#include "player/app/session.h"
#include "player/index/record_change.h"
#include "player/titleformat/script.h"

namespace ostrevan::app {

/// A column of components, before a change and after it.
struct column_change {
    std::string name, before, after;
};

/// Shows records in words: as columns of the components. [any-thread]
class record_columns {
public:
    explicit record_columns(session& player);

    /// The columns whose text a change of the track's record changes. The key of the change is that of the track.
    [[nodiscard]] std::vector<column_change> changed(const nuv::guid& index, const index::record_change& change,
                                                     const metadb_handle_ptr& track) const;
    /// The columns that a record fills, for one whose track is not known.
    [[nodiscard]] std::vector<column_change> filled(const services::index_manager_impl::registration& index,
                                                    std::vector<std::byte> record) const;

private:
    struct column {
        std::string name;
        titleformat::script shown;
    };
    [[nodiscard]] std::vector<std::string> texts_with(const nuv::guid& index, std::uint64_t key,
                                                      const std::optional<std::vector<std::byte>>& record,
                                                      const metadb_handle_ptr& track) const;

    const titleformat::component_fields& fields_;
    std::vector<column> columns_;
};

}  // namespace ostrevan::app
