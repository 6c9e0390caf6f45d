#include "player/system/durable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace ostrevan::system {
namespace {

[[noreturn]] void fail(const std::string& path, int error) {
    throw std::runtime_error("Cannot write " + path + ": " + std::system_category().message(error) +
                             ". Free some space or correct the permissions of the folder, then try again.");
}

void write_all(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) throw std::system_error(errno, std::system_category());
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace

void replace_file(const std::string& path, std::string_view bytes, unsigned mode) {
    std::string fresh = path + ".XXXXXX";
    const int file = ::mkstemp(fresh.data());
    if (file < 0) fail(path, errno);
    int error = 0;
    try {
        write_all(file, bytes);
        if (::fchmod(file, mode) != 0 || ::fsync(file) != 0) error = errno;
    } catch (const std::system_error& failure) {
        error = failure.code().value();
    }
    if (::close(file) != 0 && error == 0) error = errno;
    if (error == 0 && ::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) {
        ::unlink(fresh.c_str());
        fail(path, error);
    }
    const auto folder = std::filesystem::path(path).parent_path();
    const int directory = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory >= 0) {
        ::fsync(directory);
        ::close(directory);
    }
}

}  // namespace ostrevan::system
