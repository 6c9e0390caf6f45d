#pragma once

#include <string>

namespace ostrevan::core {

/// Makes the folder of a profile when it is missing, and keeps it to its user: 0700, and 0600 for the files in it, also
/// where an earlier release made them readable for others. A folder that holds something else as well keeps its mode; it may
/// be shared for a reason. Throws with a message for the user. Returns the path.
const std::string& prepare_profile(const std::string& path);

}  // namespace ostrevan::core
