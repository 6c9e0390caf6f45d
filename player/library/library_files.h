#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "player/library/file_stamp.h"
#include "player/library/track.h"

namespace ostrevan::library {

/// A library file in memory.
struct library_file {
    std::int64_t id = 0;
    std::int64_t folder = 0;
    file_stamp stamp;
    std::uint64_t device = 0;  // these three: see stored_file
    std::optional<std::uint64_t> sound{};
    std::uint64_t arrived = 0;
    std::vector<track_ptr> tracks{};
    std::vector<source_file> sources{};  // of a CUE sheet: the audio it refers to
    std::uint64_t seen = 0;              // number of the last scan that found it
    std::uint64_t seen_on = 0;           // the device it was then on
};

struct path_hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view path) const noexcept { return std::hash<std::string_view>()(path); }
};

/// By path.
using library_files = std::unordered_map<std::string, library_file, path_hash, std::equal_to<>>;

}  // namespace ostrevan::library
