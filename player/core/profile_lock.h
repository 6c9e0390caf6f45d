#pragma once

#include <optional>
#include <string>
#include <utility>

#include "player/system/descriptor.h"

namespace ostrevan::core {

/// Keeps a profile to one process. The lock ends with the process, however that ends. A profile that cannot be written
/// needs no lock file, but an existing one is respected.
class profile_lock {
public:
    /// Empty while another process holds it. Throws when something else is in the place of the lock, and leaves that alone.
    static std::optional<profile_lock> take(const std::string& profile);

    /// False for a profile that cannot be written and has no lock file: other processes may use it as well.
    [[nodiscard]] bool is_exclusive() const noexcept { return static_cast<bool>(file_); }

private:
    explicit profile_lock(system::descriptor file) noexcept : file_(std::move(file)) {}

    system::descriptor file_;
};

/// The number of the process that holds the lock, or "unknown".
std::string holder_of(const std::string& profile);

}  // namespace ostrevan::core
