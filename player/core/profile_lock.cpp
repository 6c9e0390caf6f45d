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

namespace ostrevan::core {
namespace {

constexpr int open_flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

std::string path_in(const std::string& profile) { return profile + "/lock"; }

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

std::optional<profile_lock> profile_lock::take(const std::string& profile) {
    const auto path = path_in(profile);
    system::descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | open_flags, 0600));
    const bool is_writable{file};
    if (!is_writable && is_not_writable(errno)) {
        const int reason = errno;
        file = system::descriptor(::open(path.c_str(), O_RDONLY | open_flags));
        // No lock file in a read-only profile: nobody holds it.
        if (!file && errno == ENOENT) return profile_lock({});
        if (!file) errno = reason;
    }
    if (!file && errno != ELOOP && errno != EISDIR)
        throw std::runtime_error("Cannot open " + path + ": " + std::system_category().message(errno) +
                                 ". Correct the permissions of the profile folder, or choose another with --profile.");
    if (!file || !is_lock_file(file.get()))
        throw std::runtime_error(path + " is not the player's lock file and was left as it is. Move it away, or choose " +
                                 "another profile with --profile.");
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;
    const auto own = std::to_string(::getpid());
    if (is_writable && (::ftruncate(file.get(), 0) != 0 || ::pwrite(file.get(), own.data(), own.size(), 0) < 0)) {
        // Not needed for locking, only for messages.
    }
    return profile_lock(std::move(file));
}

std::string holder_of(const std::string& profile) {
    const system::descriptor file(::open(path_in(profile).c_str(), O_RDONLY | open_flags));
    const auto holder = file ? content_of(file.get()) : "";
    return holder.empty() ? "unknown" : holder;
}

}  // namespace ostrevan::core
