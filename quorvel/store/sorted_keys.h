#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "ostrevan/track.h"

namespace quorvel {

/// The keys of the tracks that have one, each once, in ascending order, which is the fastest to look up and to store. A
/// second thread computes half of many. Key 0 is left out, because nothing is stored under it. `is_wanted` leaves out more;
/// it is called in ascending order on each of the threads. [any-thread]
[[nodiscard]] std::vector<std::uint64_t> SortedKeysOf(ostrevan::metadb_handle_list_cref tracks,
                                                      const std::function<bool(std::uint64_t key)>& is_wanted = {});

}  // namespace quorvel
