#pragma once

#include <optional>
#include <string>

#include "player/core/profile_lock.h"

namespace ostrevan::desktop {

/// The lock of a profile. Where another process holds it, asks the user whether that one may be ended, and then waits for
/// its end. Empty when the user declines. [main-thread]
std::optional<core::profile_lock> take_profile(const std::string& profile);

}  // namespace ostrevan::desktop
