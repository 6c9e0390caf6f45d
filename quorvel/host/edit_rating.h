#pragma once

#include <cstdint>

#include "ostrevan/track.h"

namespace quorvel {

/// Changes the rating of tracks, each once however often it occurs, and updates file tags if the user wants that. `step` is
/// a number of stars; when it is 0 the tracks get the stored value `rating`. More than 100 tracks are changed later, and
/// only if the user agrees. [main-thread], checked
void editRating(ostrevan::metadb_handle_list_cref items, std::uint32_t rating, std::int32_t step);

}  // namespace quorvel
