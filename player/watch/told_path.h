#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ostrevan::watch {

struct told_path {
    std::string path;
    /// The number of the track in a file with several, when the location has it.
    std::optional<std::uint32_t> subsong;
};

/// The path of a location on this machine: a path as it is, or an address with percent signs decoded, unless the file is
/// found without that, since some players leave them out. "SHEET/track0003" is the third track of a CUE sheet. Nothing for
/// an address elsewhere. Asks the disk.
std::optional<told_path> path_of(std::string_view location);

}  // namespace ostrevan::watch
