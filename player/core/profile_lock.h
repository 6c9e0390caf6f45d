#pragma once

#include <chrono>
#include <string>

namespace ostrevan::core {

/// Holds a profile for this process: two players never write one profile. The lock goes with the process, however it ends.
/// A profile that cannot be written needs no lock file; one that is there is heeded.
class profile_lock {
public:
    /// Waits up to `patience` for another holder to end; then throws with a message that names its process.
    /// Throws as well, and leaves it alone, when something else is in the lock's place.
    profile_lock(const std::string& profile, std::chrono::milliseconds patience);
    ~profile_lock();
    profile_lock(const profile_lock&) = delete;
    profile_lock& operator=(const profile_lock&) = delete;

private:
    int file_;
};

}  // namespace ostrevan::core
