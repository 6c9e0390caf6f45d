#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ostrevan/index.h"
#include "ostrevan/progress.h"
#include "ostrevan/track.h"

namespace quorvel {

/// A track whose information the player may not hold.
struct GatheredTrack {
    ostrevan::metadb_handle_ptr track;
    std::optional<std::uint64_t> key = std::nullopt;
    std::optional<std::uint64_t> older_key = std::nullopt;  ///< under an older mapping
};

/// Finds the keys of the tracks whose information the player does not hold by reading it from their files, each once, on
/// another thread, and returns when that is done; their keys under an older mapping too, unless that is null. A file that
/// cannot be read is passed over. Throws `ostrevan::exception_aborted` when the user stops it, once the file in hand is
/// done. [main-thread]
void ReadKeysInFiles(std::vector<GatheredTrack>& tracks, ostrevan::progress_scope& progress,
                     const ostrevan::index_client_ptr& older_mapping = nullptr);

}  // namespace quorvel
