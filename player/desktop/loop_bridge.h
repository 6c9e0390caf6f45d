#pragma once

#include <QObject>
#include <atomic>

#include "player/core/main_loop.h"

namespace ostrevan::desktop {

/// Runs the player's main loop inside Qt's while it lives. [main-thread]
class loop_bridge {
public:
    explicit loop_bridge(core::main_loop& loop);
    ~loop_bridge();
    loop_bridge(const loop_bridge&) = delete;
    loop_bridge& operator=(const loop_bridge&) = delete;

private:
    void call();
    void run();

    core::main_loop& loop_;
    std::atomic<bool> is_called_ = false;
    QObject receiver_;
};

}  // namespace ostrevan::desktop
