#pragma once

#include "ostrevan/track.h"

namespace quorvel {

/// Takes over what the player still holds for these tracks under the older mappings, as far as it holds no record under the
/// active one: to run it again changes nothing. Costs next to nothing when no such records are held. A failure is written to
/// the console; it answers false then, and nothing may be stored under the active mapping for tracks that have no record
/// there, or the older ones would never be taken over. [main-thread]
[[nodiscard]] bool migrate_older_mappings(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
