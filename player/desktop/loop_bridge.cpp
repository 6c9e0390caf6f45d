#include "player/desktop/loop_bridge.h"

#include <chrono>

namespace ostrevan::desktop {

loop_bridge::loop_bridge(core::main_loop& loop) : loop_(loop) {
    loop_.run_inside([this] { call(); });
}

loop_bridge::~loop_bridge() { loop_.run_inside({}); }

void loop_bridge::call() {
    if (!is_called_.exchange(true))
        QMetaObject::invokeMethod(
            &receiver_, [this] { run(); }, Qt::QueuedConnection);
}

void loop_bridge::run() {
    // Leaves time for the keyboard, the mouse and drawing.
    constexpr auto slice = std::chrono::milliseconds(8);
    is_called_ = false;
    for (const auto begin = std::chrono::steady_clock::now(); std::chrono::steady_clock::now() - begin < slice;)
        if (!loop_.run_next()) return;
    call();
}

}  // namespace ostrevan::desktop
