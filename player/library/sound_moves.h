#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/track.h"

namespace ostrevan::library {

struct placed_track {
    std::uint32_t subsong = 0;
    metadb_info_ptr info;
};

/// The sound of one file, at a path that it has left or come to.
struct placed_sound {
    std::string path;
    std::uint64_t mark = 0;
    /// When it came to the path; for one that has left, when it was last there. Numbers of scans.
    std::uint64_t scan = 0;
    std::vector<placed_track> tracks;
};

/// More than one file fits: nothing is known of which became which.
struct unclear_move {
    std::vector<std::string> from, to;
};

struct sound_moves {
    std::vector<std::pair<const placed_sound*, const placed_sound*>> sure;  // from, to
    std::vector<unclear_move> unclear;
};

/// Which files were renamed: the same mark, and tracks of the same lengths, came to a path after they had been seen at
/// another one for the last time. Copies with the same tags are told apart by these and by their names; for what is left,
/// two that fit are one too many. What is returned points into both lists.
sound_moves find_moves(std::span<const placed_sound> left, std::span<const placed_sound> come);

}  // namespace ostrevan::library
