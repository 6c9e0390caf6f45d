#include "player/core/profile_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace ostrevan {
namespace {

std::string holder_of(int file) {
    std::array<char, 32> text{};
    const auto size = ::pread(file, text.data(), text.size() - 1, 0);
    return size > 0 ? std::string(text.data(), static_cast<std::size_t>(size)) : "unknown";
}

}  // namespace

profile_lock::profile_lock(const std::string& profile, std::chrono::milliseconds patience) {
    const auto path = profile + "/lock";
    file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file_ < 0)
        throw std::runtime_error(
            "Cannot open " + path + ": " + std::system_category().message(errno) +
            ". Make room on the disk or the profile folder writable, or choose another with --profile.");
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (::flock(file_, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline) {
            const auto holder = holder_of(file_);
            ::close(file_);
            throw std::runtime_error("The profile " + profile + " is in use by process " + holder +
                                     ". Wait until it ends, or choose another profile with --profile.");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    const auto own = std::to_string(::getpid());
    if (::ftruncate(file_, 0) != 0 || ::pwrite(file_, own.data(), own.size(), 0) < 0) {
        // The number only serves the message above.
    }
}

profile_lock::~profile_lock() { ::close(file_); }

}  // namespace ostrevan
