// What a client sends to the owner of a profile, over a real socket.
// Seeds: fuzz/seeds/call
// Definitions: OSTREVAN_VERSION="0"
// Sources: player/remote/call.cpp player/remote/channel.cpp player/remote/frame.cpp player/remote/message.cpp
// Sources: player/system/descriptor.cpp
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "fuzz/check.h"
#include "player/remote/call.h"

namespace {

using namespace ostrevan;

/// Sends up to five descriptors of `file` with the bytes.
void send_with(int socket, std::string_view bytes, std::size_t descriptors, int file) {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(5 * sizeof(int))> control{};
    iovec part{const_cast<char*>(bytes.data()), bytes.size()};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    if (descriptors > 0) {
        header.msg_control = control.data();
        header.msg_controllen = CMSG_SPACE(descriptors * sizeof(int));
        auto& block = *CMSG_FIRSTHDR(&header);
        block.cmsg_len = CMSG_LEN(descriptors * sizeof(int));
        block.cmsg_level = SOL_SOCKET;
        block.cmsg_type = SCM_RIGHTS;
        for (std::size_t i = 0; i < descriptors; ++i) std::memcpy(CMSG_DATA(&block) + i * sizeof file, &file, sizeof file);
    }
    (void)!::sendmsg(socket, &header, MSG_NOSIGNAL | MSG_DONTWAIT);
}

/// The lowest free number: grows with every descriptor that stays open.
int next_descriptor() {
    const int number = ::dup(STDIN_FILENO);
    ::close(number);
    return number;
}

}  // namespace

/// The first byte of the input says in how many pieces it is sent, and how many descriptors come with the first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t descriptors = std::min(data[0] % 8U, 5U), pieces = 1 + data[0] / 8U;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto before = next_descriptor();
    {
        std::array<int, 2> ends{};
        fuzz::check(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "two ends");
        const system::descriptor client(ends[0]);
        remote::call owner{system::descriptor(ends[1])};
        int interrupts = 0;
        owner.on_interrupt([&] { ++interrupts; });
        auto state = remote::call::state::incomplete;
        const auto step = std::max<std::size_t>(bytes.size() / pieces, 1);
        for (std::size_t at = 0; at < bytes.size() && state != remote::call::state::ended; at += step) {
            send_with(client.get(), bytes.substr(at, step), at == 0 ? descriptors : 0, STDERR_FILENO);
            const auto next = owner.receive();
            fuzz::check(state == remote::call::state::incomplete || next != remote::call::state::incomplete,
                        "a command that is complete stays so");
            state = next;
        }
        if (state == remote::call::state::complete) {
            const auto again = remote::encode(owner.wanted());
            fuzz::check(remote::encode(remote::decode(again)) == again, "a command arrives as it was sent");
            fuzz::check(owner.take_files().folder.get() >= 0, "a command has its files");
        }
        ::shutdown(client.get(), SHUT_WR);
        for (int rest = 0; state != remote::call::state::ended; ++rest) {
            fuzz::check(rest < 1000, "the end is noticed");
            state = owner.receive();
        }
        fuzz::check(interrupts > 0, "the death of a client interrupts");
    }
    fuzz::check(next_descriptor() == before, "no descriptor stays open");
    return 0;
}
