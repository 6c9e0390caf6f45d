#pragma once

#include <string>
#include <string_view>

#include "ostrevan/track.h"

namespace ostrevan::library {

/// The path as the library stores it: absolute, lexically normal, without a final separator and "file://". Symbolic links
/// are kept, and other protocols are unchanged.
/// [any-thread]
std::string normal_path(std::string_view path);

/// Parses `path` or `path|subsong`. A name that contains "|" is a path when that file exists.
playable_location parse_location(std::string_view text);

}  // namespace ostrevan::library
