#pragma once

#include <vector>

#include "ostrevan/track.h"

namespace quorvel {

/// Whether the player holds anything under the older mappings. True if that cannot be found out. [main-thread]
[[nodiscard]] bool may_hold_older_records() noexcept;

/// Merges the records of these tracks under older mappings into those under the active one with `MergeMax` and removes them,
/// in one transaction, so that none is merged twice. A failure is written to the console. Returns the tracks that still have
/// older records, or may have: no date added must be set for these, because their older records bring one. [main-thread]
[[nodiscard]] std::vector<ostrevan::metadb_handle_ptr> take_over_older_records(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
