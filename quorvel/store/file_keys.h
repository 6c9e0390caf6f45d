#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ostrevan/index.h"
#include "ostrevan/progress.h"
#include "ostrevan/track.h"

namespace quorvel {

/// A track whose key is wanted.
struct GatheredTrack {
    ostrevan::metadb_handle_ptr track;
    std::optional<std::uint64_t> key = std::nullopt;
    std::optional<std::uint64_t> older_key = std::nullopt;  ///< under an older mapping
};

/// Fills in the keys of the tracks whose information the player does not hold, and their keys under an older mapping unless
/// that is null. Reads the files, each once, on another thread, and returns when that is done. Files that cannot be read are
/// skipped. Throws `ostrevan::exception_aborted` when the user stops it, after the current file. [main-thread]
void ReadKeysInFiles(std::vector<GatheredTrack>& tracks, ostrevan::progress_scope& progress,
                     const ostrevan::index_client_ptr& older_mapping = nullptr);

}  // namespace quorvel
