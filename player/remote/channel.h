#pragma once

#include <sys/socket.h>

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "player/remote/frame.h"
#include "player/remote/message.h"
#include "player/system/descriptor.h"

namespace ostrevan::remote {

/// One end of a connection: messages, and descriptors with them.
class channel {
public:
    explicit channel(system::descriptor socket) noexcept : socket_(std::move(socket)) {}

    [[nodiscard]] int socket() const noexcept { return socket_.get(); }

    /// Returns false when the other end is gone. [any-thread]
    bool send(const message& what, std::span<const int> descriptors = {}) const;
    /// Reads what has come, without waiting. Returns false at the end of the connection. Throws `malformed` for more
    /// descriptors than a command has.
    bool receive();
    /// The next message; empty while it is incomplete. Throws `malformed`.
    std::optional<message> next();
    /// All that have come, in order.
    std::vector<system::descriptor> take_descriptors() { return std::exchange(descriptors_, {}); }

private:
    void keep_descriptors(msghdr& header);

    system::descriptor socket_;
    frame_reader frames_;
    std::vector<system::descriptor> descriptors_;
};

/// Standard input, output and error, and the current folder.
constexpr std::size_t descriptors_of_command = 4;

}  // namespace ostrevan::remote
