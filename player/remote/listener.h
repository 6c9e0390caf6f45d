#pragma once

#include <poll.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "player/remote/call.h"
#include "player/remote/socket_place.h"
#include "player/system/descriptor.h"
#include "player/system/wake_event.h"

namespace ostrevan::remote {

/// The owner's end: takes the commands of clients, on a thread of its own. A client that is slow, silent or hostile costs
/// its own connection only.
class listener {
public:
    /// Receives a complete command, on the listener's thread; returns soon. The client waits until the call is finished.
    using taker = std::function<void(std::shared_ptr<call>)>;

    /// Only for the holder of the profile's lock. A client has `patience` to send its command. Throws with a message for the
    /// user.
    listener(const socket_place& place, taker take, std::chrono::milliseconds patience = std::chrono::seconds(10));
    /// Calls that are not finished lose their connection.
    ~listener();
    listener(const listener&) = delete;
    listener& operator=(const listener&) = delete;

    /// From now on, new clients are told that the owner is ending. [any-thread]
    void stop_taking();

private:
    using clock = std::chrono::steady_clock;
    struct connection {
        std::shared_ptr<call> of;
        clock::time_point latest;  ///< for the whole command
        bool is_taken = false;
    };

    void serve();
    void wait();
    /// Returns false when nobody waits.
    bool accept_one();
    /// Returns false when the connection is over.
    bool attend(connection& client, bool has_news);
    void turn_away_the_rest();

    const socket_place place_;
    const taker take_;
    const std::chrono::milliseconds patience_;
    system::descriptor socket_;
    system::wake_event wake_;
    std::vector<connection> clients_;
    std::vector<pollfd> polled_;
    std::atomic<bool> takes_{true}, is_ending_{false};
    std::thread thread_;
};

}  // namespace ostrevan::remote
