#include "player/system/interrupt.h"

#include <csignal>

namespace ostrevan::system {
namespace {

void on_signal(int signal) {
    interrupted() = true;
    std::signal(signal, SIG_DFL);
}

}  // namespace

std::atomic<bool>& interrupted() noexcept {
    static constinit std::atomic<bool> flag{false};
    return flag;
}

void handle_interrupts() {
    std::signal(SIGINT, on_signal);
    std::signal(SIGTERM, on_signal);
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace ostrevan::system
