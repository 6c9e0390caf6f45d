#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "ostrevan/progress.h"
#include "ostrevan/track.h"
#include "quorvel/interchange/import_stats.h"
#include "quorvel/store/file_keys.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {

/// Edits by the key that a track had under an older mapping.
using OldKeyEdits = std::unordered_map<std::uint64_t, ImportedStats>;

/// An element of a file that names tracks by their paths.
struct PathItem {
    ostrevan::playable_location location;
    ImportedStats stats;
};

/// The state of one import, shared by the handlers of its elements and the steps after them. [main-thread]
struct ParseGlobals {
    ParseGlobals(StatsOp& operation, std::uint32_t selected) : op(operation), fields(selected) {}

    void apply(std::uint64_t key, const ImportedStats& stats) {
        op.Update(key, [&](t_playback_stats& stored) { stats.replace_in(stored); });
    }

    StatsOp& op;
    const std::uint32_t fields;  ///< set of `ExportFields`
    ostrevan::progress_scope progress{"records imported"};
    std::size_t records = 0;                     ///< taken from the file so far
    std::map<nuv::guid, OldKeyEdits> old_edits;  ///< by mapping
    std::vector<PathItem> pending;
    std::vector<GatheredTrack> gathered;  ///< those whose keys are wanted
};

}  // namespace quorvel
