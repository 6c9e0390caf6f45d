#include <windows.h>

#include "quorvel/platform/clock.h"

namespace quorvel {

std::uint64_t filetime_now() noexcept {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return static_cast<std::uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
}

}  // namespace quorvel
