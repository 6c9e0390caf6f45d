#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "player/index/journal.h"
#include "player/services/index_manager.h"
#include "player/titleformat/track_fields.h"
#include "player/view/columns.h"

namespace ostrevan::app {

/// A column of components, before a change and after it.
struct column_change {
    std::string name, before, after;
};

/// How a change of a record looks in the columns: those whose text it changes. The track has the key of the record, or is
/// one without tags when none is known.
std::vector<column_change> seen_in_columns(const nuv::guid& index, const index::record_change& change,
                                           const metadb_handle_ptr& track, const std::vector<view::column>& columns,
                                           const titleformat::component_fields& fields);

/// Something that happened to the statistics of a track.
struct story_event {
    std::int64_t time = 0;  // seconds since 1970
    std::int64_t act = 0;   // the act to undo; 0 for a listen
    std::string what{};
    std::vector<column_change> columns{};
    bool is_undone = false;
};

/// What changed the records of a track, and when it was heard; the newest first.
std::vector<story_event> story_of(const metadb_handle_ptr& track, index::journal& journal,
                                  const std::vector<services::index_manager_impl::registration>& indexes,
                                  const std::vector<view::column>& columns, const titleformat::component_fields& fields);

}  // namespace ostrevan::app
