#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "player/library/file_stamp.h"

namespace ostrevan::library {

/// A file with what was seen of it when its tracks were read.
struct stored_file {
    std::int64_t id = 0;  // 0 while it is not in the database
    std::int64_t folder = 0;
    std::string path;
    file_stamp stamp;
    std::vector<source_file> sources;  // for a CUE sheet: the audio it refers to
};

struct stored_track {
    std::uint32_t subsong = 0;
    std::string encoded;  // by encode_info
};

/// What a track of the library said before it was changed.
struct stored_edit {
    std::string path;
    stored_track before;
};

}  // namespace ostrevan::library
