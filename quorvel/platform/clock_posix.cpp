#include <ctime>

#include "quorvel/platform/clock.h"

namespace quorvel {

std::uint64_t filetime_now() noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return filetime_of_1970 + static_cast<std::uint64_t>(now.tv_sec) * filetime_per_second +
           static_cast<std::uint64_t>(now.tv_nsec) / 100;
}

}  // namespace quorvel
