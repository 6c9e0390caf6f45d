#include "player/system/write_all.h"

#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace ostrevan::system {
namespace {

/// Returns false when `stop` became true first.
bool wait_for_room(int descriptor, const std::atomic<bool>& stop) noexcept {
    constexpr int look_again_ms = 100;
    pollfd output{descriptor, POLLOUT, 0};
    while (::poll(&output, 1, look_again_ms) <= 0)
        if (stop) return false;
    return true;
}

/// As much as can be written without waiting, once there is room.
std::size_t largest_write(int descriptor) noexcept {
    struct stat status {};
    const bool is_file = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return is_file ? std::size_t{1} << 20U : PIPE_BUF;
}

}  // namespace

int write_all(int descriptor, std::string_view bytes, const std::atomic<bool>& stop) noexcept {
    const auto portion = largest_write(descriptor);
    while (!bytes.empty()) {
        if (!wait_for_room(descriptor, stop)) return EINTR;
        const auto written = ::write(descriptor, bytes.data(), bytes.size() < portion ? bytes.size() : portion);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

}  // namespace ostrevan::system
