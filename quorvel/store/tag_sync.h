#pragma once

#include "ostrevan/track.h"

namespace quorvel {

/// Writes the statistics of the tracks into their files' tags, if the user wants that done whenever statistics change.
/// `user_initiated` is false for a play that was counted. [main-thread]
void PCDB_auto_sync_tags(ostrevan::metadb_handle_list_cref tracks, bool user_initiated);

}  // namespace quorvel
