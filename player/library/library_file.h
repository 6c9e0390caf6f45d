#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/library/file_stamp.h"
#include "player/library/track.h"

namespace ostrevan::library {

/// A file and its state when its tracks were read. Its path is kept apart, as the key.
struct stored_file {
    std::int64_t id = 0;  // 0 until stored
    std::int64_t folder = 0;
    file_stamp stamp{};
    std::uint64_t device = 0;  // of its folder; 0 when unknown
    /// Mark of the encoded audio, 0 when there is none. Empty for files read by a version without marks.
    std::optional<std::uint64_t> sound{};
    std::uint64_t arrived = 0;           // number of the scan that first found this sound at this path
    std::vector<source_file> sources{};  // of a CUE sheet: the audio it refers to
};

struct stored_track {
    std::uint32_t subsong = 0;
    file_info info;
};

/// A library track before a change, with its previous location if it has moved.
struct stored_edit {
    std::string path;
    stored_track before;
    std::optional<std::string> path_before;
};

/// A library file in memory.
struct library_file : stored_file {
    std::vector<track_ptr> tracks{};
    std::uint64_t seen = 0;     // number of the last scan that found it
    std::uint64_t seen_on = 0;  // the device it was then on
};

}  // namespace ostrevan::library
