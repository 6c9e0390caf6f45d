#include "player/library/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace ostrevan::library {
namespace {

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

DIR* stream_of(void* handle) noexcept { return static_cast<DIR*>(handle); }

file_status to_status(const struct stat& found) noexcept {
    file_status status;
    if (S_ISREG(found.st_mode)) status.kind = entry_kind::file;
    if (S_ISDIR(found.st_mode)) status.kind = entry_kind::directory;
    status.stamp = {found.st_size, found.st_mtim.tv_sec * 1'000'000'000 + found.st_mtim.tv_nsec};
    status.identity = {found.st_dev, found.st_ino};
    return status;
}

entry_kind kind_of(int directory_fd, const dirent& found) noexcept {
    switch (found.d_type) {
        case DT_REG:
            return entry_kind::file;
        case DT_DIR:
            return entry_kind::directory;
        case DT_LNK:
            return entry_kind::link;
        case DT_UNKNOWN:
            break;  // not every file system tells
        default:
            return entry_kind::other;
    }
    struct stat status {};
    if (fstatat(directory_fd, found.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return entry_kind::other;
    return S_ISLNK(status.st_mode) ? entry_kind::link : to_status(status).kind;
}

}  // namespace

void directory::closer::operator()(void* handle) const noexcept { closedir(stream_of(handle)); }

directory::directory(const std::string& path) : handle_(opendir(path.c_str())) {
    if (!handle_) fail();
}

std::optional<directory::entry> directory::next() {
    for (;;) {
        errno = 0;
        const dirent* found = readdir(stream_of(handle_.get()));
        if (found == nullptr) {
            if (errno != 0) fail();
            return std::nullopt;
        }
        const std::string_view name = found->d_name;
        if (name != "." && name != "..") return entry{name, kind_of(dirfd(stream_of(handle_.get())), *found)};
    }
}

file_status directory::status() const {
    struct stat found {};
    if (fstat(dirfd(stream_of(handle_.get())), &found) != 0) fail();
    return to_status(found);
}

file_status directory::status(std::string_view name) const {
    struct stat found {};
    // `next` returns names with a terminating zero.
    if (fstatat(dirfd(stream_of(handle_.get())), name.data(), &found, 0) != 0) fail();
    return to_status(found);
}

file_status status_of(const std::string& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) fail();
    return to_status(found);
}

}  // namespace ostrevan::library
