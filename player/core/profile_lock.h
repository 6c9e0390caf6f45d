#pragma once

#include <chrono>
#include <string>

#include "player/system/descriptor.h"

namespace ostrevan::core {

/// Keeps a profile to one process. The lock ends with the process, however that ends. A profile that cannot be written
/// needs no lock file, but an existing one is respected.
class profile_lock {
public:
    /// Waits up to `patience` for another holder to end, then throws with a message that names its process. Throws as well
    /// when something else is in the place of the lock, and leaves that alone.
    profile_lock(const std::string& profile, std::chrono::milliseconds patience);

private:
    system::descriptor file_;
};

}  // namespace ostrevan::core
