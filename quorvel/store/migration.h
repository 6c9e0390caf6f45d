#pragma once

#include <vector>

#include "ostrevan/track.h"

namespace quorvel {

/// Whether the player holds anything under the older mappings; when that cannot be found out, it may. [main-thread]
[[nodiscard]] bool may_hold_older_records() noexcept;

/// Takes over what the player holds for these tracks under the older mappings. It is merged into the records under the
/// active one with `MergeMax` and removed, in one transaction: a record that is there already does not keep it out, and
/// nothing is taken over twice. A failure is written to the console. Returns the tracks that still have older records, or
/// may have: these bring their own dates added, so none is to be set for them before. [main-thread]
[[nodiscard]] std::vector<ostrevan::metadb_handle_ptr> take_over_older_records(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
