#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "player/mpris/shown_state.h"
#include "player/playback/actions.h"
#include "player/system/wake_event.h"

namespace ostrevan::mpris {

/// The player on the session bus, as `org.mpris.MediaPlayer2.ostrevan`, on a thread of its own; a second player has its
/// number after that. Without a bus, nothing happens.
class bus_side {
public:
    /// Receives what is asked for over the bus. [any-thread]
    using request_sink = std::function<void(const playback::request&)>;

    bus_side(shown_state state, request_sink on_request);
    ~bus_side();
    bus_side(const bus_side&) = delete;
    bus_side& operator=(const bus_side&) = delete;

    /// [any-thread]
    void show(shown_state state);

private:
    class visit;

    void run();
    [[nodiscard]] shown_state shown();

    const request_sink on_request_;
    std::atomic<bool> is_ending_ = false;
    std::mutex mutex_;
    shown_state state_;  // guarded by the mutex
    system::wake_event wake_;
    std::thread thread_;
};

}  // namespace ostrevan::mpris
