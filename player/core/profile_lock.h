#pragma once

#include <chrono>
#include <string>

namespace ostrevan {

/// Holds a profile for this process: two players never write one profile. The lock goes with the process, however it ends.
class profile_lock {
public:
    /// Waits up to `patience` for another holder to end; then throws with a message that names its process.
    profile_lock(const std::string& profile, std::chrono::milliseconds patience);
    ~profile_lock();
    profile_lock(const profile_lock&) = delete;
    profile_lock& operator=(const profile_lock&) = delete;

private:
    int file_;
};

}  // namespace ostrevan
