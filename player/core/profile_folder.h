#pragma once

#include <string>

namespace ostrevan::core {

/// Makes the folder of a profile when it is missing, and makes it private: 0700, and 0600 for its files, also where an
/// earlier release left them readable for others. A folder with foreign files in it keeps its mode; it may be shared on
/// purpose. Throws with a message for the user. Returns the path.
const std::string& prepare_profile(const std::string& path);

}  // namespace ostrevan::core
