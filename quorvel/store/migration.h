#pragma once

#include "ostrevan/track.h"

namespace quorvel {

/// Takes over what the player still holds for these tracks under the older mappings, as far as it holds no record under the
/// active one: to run it again changes nothing. Costs next to nothing when no such records are held. A failure is written to
/// the console. [main-thread]
void migrate_older_mappings(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
