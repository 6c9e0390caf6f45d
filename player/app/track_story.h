#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "player/app/record_columns.h"
#include "player/index/journal.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

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
                                  const record_columns& columns);

}  // namespace ostrevan::app
