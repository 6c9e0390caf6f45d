#include "player/remote/socket_place.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include "player/system/runtime_folder.h"

namespace ostrevan::remote {
namespace {

/// Through the descriptor of the folder: the address of a socket has 107 bytes, and the folder stays the one checked.
sockaddr_un address_in(const system::descriptor& folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", folder.get(), name.c_str());
    return address;
}

const sockaddr* any(const sockaddr_un& address) noexcept { return reinterpret_cast<const sockaddr*>(&address); }

system::descriptor new_socket(int flags = 0) {
    return system::descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

[[noreturn]] void fail(const std::string& path) {
    throw std::runtime_error("Other commands cannot reach this process through " + path + ": " +
                             std::system_category().message(errno) + ".");
}

}  // namespace

std::optional<socket_place> socket_place::of(const std::string& profile) {
    struct stat status {};
    if (::stat(profile.c_str(), &status) != 0) return std::nullopt;
    return socket_place(system::runtime_folder(),
                        std::to_string(status.st_dev) + "-" + std::to_string(status.st_ino) + ".sock");
}

system::descriptor socket_place::open_folder() const {
    system::descriptor folder(::open(folder_.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder && errno == ENOENT) return folder;
    struct stat status {};
    if (!folder || ::fstat(folder.get(), &status) != 0 || !system::is_private(status))
        throw std::runtime_error(
            folder_ +
            " is not a folder of this user alone, and so no command is passed through it. Remove it, or "
            "set XDG_RUNTIME_DIR to a private folder.");
    return folder;
}

system::descriptor socket_place::listen() const {
    ::mkdir(folder_.c_str(), 0700);
    const auto folder = open_folder();
    auto socket = folder ? new_socket(SOCK_NONBLOCK) : system::descriptor();
    if (!socket) fail(folder_);
    constexpr int queue = 64;
    ::unlinkat(folder.get(), name_.c_str(), 0);
    const auto address = address_in(folder, name_);
    if (::bind(socket.get(), any(address), sizeof address) != 0 || ::fchmodat(folder.get(), name_.c_str(), 0600, 0) != 0 ||
        ::listen(socket.get(), queue) != 0)
        fail(path());
    return socket;
}

system::descriptor socket_place::connect() const {
    const auto folder = open_folder();
    if (!folder) return {};
    auto socket = new_socket();
    const auto address = address_in(folder, name_);
    if (!socket || ::connect(socket.get(), any(address), sizeof address) != 0) return {};
    if (!is_of_this_user(socket)) throw std::runtime_error(path() + " belongs to another user.");
    return socket;
}

void socket_place::remove() const noexcept { ::unlink(path().c_str()); }

bool is_of_this_user(const system::descriptor& socket) noexcept {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

}  // namespace ostrevan::remote
