#include "player/services/local_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "ostrevan/exceptions.h"

namespace ostrevan::services {

using namespace ostrevan_io;

local_file::local_file(std::string path, int descriptor) noexcept : path_(std::move(path)), descriptor_(descriptor) {}

local_file::~local_file() { ::close(descriptor_); }

void local_file::fail(const char* done) const { throw_io_error(path_ + " cannot be " + done, errno); }

std::optional<std::uint64_t> local_file::size() {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) fail("read");
    if (!S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

void local_file::seek(std::uint64_t position) {
    if (::lseek(descriptor_, static_cast<off_t>(position), SEEK_SET) < 0) fail("read");
}

std::size_t local_file::read(void* buffer, std::size_t bytes) {
    auto* const start = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < bytes) {
        const auto got = ::read(descriptor_, start + done, bytes - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) fail("read");
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void local_file::write(const void* bytes, std::size_t size) {
    const auto* next = static_cast<const char*>(bytes);
    while (size != 0) {
        const auto written = ::write(descriptor_, next, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) fail("written");
        next += written;
        size -= static_cast<std::size_t>(written);
    }
}

void local_file::flush() {
    // What has no disk behind it, such as a pipe, cannot be flushed and need not be.
    if (::fsync(descriptor_) != 0 && errno != EINVAL && errno != ENOTSUP && errno != EROFS) fail("written");
}

[[noreturn]] void throw_io_error(const std::string& what, int error) {
    const auto text = what + ": " + std::system_category().message(error);
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            throw exception_io_not_found(text);
        case EACCES:
        case EPERM:
        case EROFS:
            throw exception_io_denied(text);
        case EBUSY:
        case ETXTBSY:
            throw exception_io_sharing_violation(text);
        case EEXIST:
            throw exception_io_already_exists(text);
        default:
            throw exception_io_system(text);
    }
}

file_ptr open_local_file(const std::string& path, filesystem::open_mode mode) {
    const int flags = mode == filesystem::open_mode::read ? O_RDONLY : O_WRONLY;
    // Opening a pipe would wait for somebody at its other end, and not notice that the user wants to stop.
    const int descriptor = ::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0 && errno == ENXIO) throw exception_io_system(path + " cannot be opened: nobody reads from this pipe");
    if (descriptor < 0) throw_io_error(path + " cannot be opened", errno);
    auto opened = service_new<local_file>(path, descriptor);
    if (mode == filesystem::open_mode::write_new && ::fcntl(descriptor, F_SETFL, O_WRONLY) != 0)
        throw_io_error(path + " cannot be opened", errno);
    return opened;
}

}  // namespace ostrevan::services
