#pragma once

#include <atomic>
#include <string_view>

namespace ostrevan::system {

/// Writes everything to a descriptor. Returns 0 or the error number; EINTR when `stop` became true while nobody read the
/// other end. [any-thread]
int write_all(int descriptor, std::string_view bytes, const std::atomic<bool>& stop) noexcept;

}  // namespace ostrevan::system
