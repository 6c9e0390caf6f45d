#include "player/system/durable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "player/system/descriptor.h"

namespace ostrevan::system {
namespace {

[[noreturn]] void fail(const std::string& path, int error) {
    throw std::runtime_error("Cannot write " + path + ": " + std::system_category().message(error) +
                             ". Free some space or correct the permissions of the folder, then try again.");
}

}  // namespace

std::string folder_of(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

int write_all(int file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const auto written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        if (written == 0) return ENOSPC;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int sync_to_disk(int file) noexcept { return ::fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno; }

int sync_to_disk(const std::string& path) noexcept {
    const descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return file ? sync_to_disk(file.get()) : errno;
}

void replace_file(const std::string& path, std::string_view bytes, unsigned mode) {
    std::string fresh = path + ".XXXXXX";
    descriptor file(::mkstemp(fresh.data()));
    if (!file) fail(path, errno);
    int error = write_all(file.get(), bytes);
    if (error == 0 && ::fchmod(file.get(), mode) != 0) error = errno;
    if (error == 0) error = sync_to_disk(file.get());
    if (const int closing = file.close(); error == 0) error = closing;
    if (error == 0 && ::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) {
        ::unlink(fresh.c_str());
        fail(path, error);
    }
    (void)sync_to_disk(folder_of(path));
}

}  // namespace ostrevan::system
