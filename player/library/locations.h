#pragma once

#include <string>
#include <string_view>

#include "ostrevan/track.h"

namespace ostrevan::library {

/// A path in the form in which the library keeps it: absolute, lexically normal, without "file://". One with another
/// protocol stays as it is. [any-thread]
std::string normal_path(std::string_view path);

/// A location as a user writes it: `path` or `path|subsong`; a file name with "|" in it stands for itself when it is there.
playable_location parse_location(std::string_view text);

}  // namespace ostrevan::library
