#include "player/services/local_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "ostrevan/exceptions.h"
#include "player/system/durable_file.h"

namespace ostrevan::services {

using namespace ostrevan_io;

local_file::local_file(std::string path, system::descriptor opened) noexcept
    : path_(std::move(path)), file_(std::move(opened)) {}

void local_file::fail(const char* done, int error) const { throw_io_error(path_ + " cannot be " + done, error); }

std::optional<std::uint64_t> local_file::size() {
    struct stat status {};
    if (::fstat(file_.get(), &status) != 0) fail("read", errno);
    if (!S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

void local_file::seek(std::uint64_t position) {
    if (::lseek(file_.get(), static_cast<off_t>(position), SEEK_SET) < 0) fail("read", errno);
}

std::size_t local_file::read(void* buffer, std::size_t bytes) {
    auto* const start = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < bytes) {
        const auto got = ::read(file_.get(), start + done, bytes - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) fail("read", errno);
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void local_file::write(const void* bytes, std::size_t size) {
    if (const int error = system::write_all(file_.get(), {static_cast<const char*>(bytes), size}); error != 0)
        fail("written", error);
}

void local_file::flush() {
    if (const int error = system::sync_to_disk(file_.get()); error != 0) fail("written", error);
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
    system::descriptor opened(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC));
    if (!opened && errno == ENXIO) throw exception_io_system(path + " cannot be opened: nobody reads from this pipe");
    if (!opened || (mode == filesystem::open_mode::write_new && ::fcntl(opened.get(), F_SETFL, O_WRONLY) != 0))
        throw_io_error(path + " cannot be opened", errno);
    return service_new<local_file>(path, std::move(opened));
}

}  // namespace ostrevan::services
