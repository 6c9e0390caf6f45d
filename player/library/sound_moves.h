#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "player/library/track.h"

namespace ostrevan::library {

/// The sound of one file, at its old or new path.
struct placed_sound {
    std::string path;
    std::uint64_t mark = 0;
    /// Number of the scan that first found it at a new path, or last saw it at an old one.
    std::uint64_t scan = 0;
    std::vector<track_snapshot> tracks;
};

/// Several files match, so it is unknown which became which.
struct unclear_move {
    std::vector<std::string> from, to;
};

struct sound_moves {
    std::vector<std::pair<const placed_sound*, const placed_sound*>> sure;  // from, to
    std::vector<unclear_move> unclear;
};

/// Finds renamed files: the same mark and track lengths, new at one path after the last sight at another. Candidates that
/// match several are told apart by tags, then by names; what remains ambiguous is reported as unclear. The result points
/// into both lists.
sound_moves find_moves(std::span<const placed_sound> left, std::span<const placed_sound> come);

}  // namespace ostrevan::library
