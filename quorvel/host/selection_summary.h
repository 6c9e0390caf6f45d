#pragma once

#include <cstdint>

#include "ostrevan/track.h"
#include "quorvel/store/record.h"

namespace quorvel {

/// Totals of a selection of tracks. Times are 0 if no track has them.
struct selection_summary {
    std::uint64_t play_count = 0;
    std::uint64_t first_played = 0;
    std::uint64_t last_played = 0;
    std::uint64_t first_added = 0;
    std::uint64_t last_added = 0;
    /// A halving average in the order of the keys, so later keys weigh more: for three ratings ((a + b) / 2 + c) / 2.
    std::uint32_t rating = rating_not_set;
};

/// Every record counts once, however many of the tracks share it. [any-thread]
[[nodiscard]] selection_summary summarise(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
