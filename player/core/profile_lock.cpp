#include "player/core/profile_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace ostrevan::core {
namespace {

/// The start of the file. In a lock of ours it is a process number.
std::string content_of(int file) {
    std::array<char, 32> text{};
    const auto size = ::pread(file, text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

/// A link or another program's file is never written to.
bool is_lock_file(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
           content_of(file).find_first_not_of("0123456789") == std::string::npos;
}

bool is_not_writable(int error) noexcept {
    return error == EROFS || error == EACCES || error == EPERM || error == ENOSPC || error == EDQUOT;
}

}  // namespace

profile_lock::profile_lock(const std::string& profile, std::chrono::milliseconds patience) {
    const auto path = profile + "/lock";
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    file_ = system::descriptor(::open(path.c_str(), O_RDWR | O_CREAT | flags, 0600));
    const bool is_writable{file_};
    if (!is_writable && is_not_writable(errno)) {
        const int reason = errno;
        file_ = system::descriptor(::open(path.c_str(), O_RDONLY | flags));
        // No lock file in a read-only profile: nobody holds it.
        if (!file_ && errno == ENOENT) return;
        if (!file_) errno = reason;
    }
    if (!file_ && errno != ELOOP && errno != EISDIR)
        throw std::runtime_error("Cannot open " + path + ": " + std::system_category().message(errno) +
                                 ". Correct the permissions of the profile folder, or choose another with --profile.");
    if (!file_ || !is_lock_file(file_.get()))
        throw std::runtime_error(path + " is not the player's lock file and was left as it is. Move it away, or choose " +
                                 "another profile with --profile.");
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline) {
            const auto holder = content_of(file_.get());
            throw std::runtime_error("The profile " + profile + " is in use by process " +
                                     (holder.empty() ? "unknown" : holder) +
                                     ". Wait until it ends, or choose another profile with --profile.");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    const auto own = std::to_string(::getpid());
    if (is_writable && (::ftruncate(file_.get(), 0) != 0 || ::pwrite(file_.get(), own.data(), own.size(), 0) < 0)) {
        // Not needed for locking, only for the message above.
    }
}

}  // namespace ostrevan::core
