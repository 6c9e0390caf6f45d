#pragma once

#include <memory>

#include "ostrevan/track.h"

namespace quorvel {

/// A copy of a track list, for work that outlives the call. It may be released on any thread.
using shared_tracks = std::shared_ptr<const ostrevan::metadb_handle_list>;

[[nodiscard]] inline shared_tracks share_tracks(ostrevan::metadb_handle_list_cref tracks) {
    return std::make_shared<const ostrevan::metadb_handle_list>(tracks);
}

}  // namespace quorvel
