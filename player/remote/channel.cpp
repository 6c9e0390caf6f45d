#include "player/remote/channel.h"

#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace ostrevan::remote {
namespace {

constexpr std::size_t room_for_descriptors = CMSG_SPACE(descriptors_of_command * sizeof(int));

}  // namespace

bool channel::send(const message& what, std::span<const int> descriptors) const {
    const auto frame = frame_of(encode(what));
    alignas(cmsghdr) std::array<char, room_for_descriptors> control{};
    for (std::string_view left = frame; !left.empty();) {
        iovec part{const_cast<char*>(left.data()), left.size()};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        if (!descriptors.empty()) {
            header.msg_control = control.data();
            header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
            auto& block = *CMSG_FIRSTHDR(&header);
            block.cmsg_level = SOL_SOCKET;
            block.cmsg_type = SCM_RIGHTS;
            block.cmsg_len = CMSG_LEN(descriptors.size_bytes());
            std::memcpy(CMSG_DATA(&block), descriptors.data(), descriptors.size_bytes());
        }
        const auto sent = ::sendmsg(socket_.get(), &header, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent < 0) return false;
        descriptors = {};
        left.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool channel::receive() {
    std::array<char, 64 * 1024> buffer;
    alignas(cmsghdr) std::array<char, room_for_descriptors> control{};
    iovec part{buffer.data(), buffer.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    const auto size = ::recvmsg(socket_.get(), &header, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (size < 0) return errno == EAGAIN || errno == EINTR;
    keep_descriptors(header);
    frames_.add({buffer.data(), static_cast<std::size_t>(size)});
    return size > 0;
}

void channel::keep_descriptors(msghdr& header) {
    for (auto* block = CMSG_FIRSTHDR(&header); block != nullptr; block = CMSG_NXTHDR(&header, block)) {
        if (block->cmsg_level != SOL_SOCKET || block->cmsg_type != SCM_RIGHTS) continue;
        const auto count = (block->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int number = -1;
            std::memcpy(&number, CMSG_DATA(block) + i * sizeof number, sizeof number);
            descriptors_.emplace_back(number);
        }
    }
    // What has no room was closed by the system.
    if ((header.msg_flags & MSG_CTRUNC) != 0 || descriptors_.size() > descriptors_of_command)
        throw malformed("too many descriptors came with a frame");
}

std::optional<message> channel::next() {
    const auto content = frames_.next();
    return content ? std::optional(decode(*content)) : std::nullopt;
}

}  // namespace ostrevan::remote
