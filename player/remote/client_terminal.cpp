#include "player/remote/client_terminal.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

#include "player/system/raw_terminal.h"

namespace ostrevan::remote {
namespace {

std::atomic<bool> stop_wanted{false};

void on_stop(int /*signal*/) { stop_wanted = true; }

/// Setting the mode would stop a background job.
void set_mode(const std::optional<termios>& mode) {
    if (mode && system::is_in_foreground(STDIN_FILENO)) ::tcsetattr(STDIN_FILENO, TCSANOW, &*mode);
}

}  // namespace

client_terminal::client_terminal() {
    termios mode{};
    if (::tcgetattr(STDIN_FILENO, &mode) != 0) return;
    before_ = mode;
    has_stops_ = std::signal(SIGTSTP, on_stop) != SIG_IGN;
    if (!has_stops_) std::signal(SIGTSTP, SIG_IGN);
}

client_terminal::~client_terminal() {
    if (has_stops_) std::signal(SIGTSTP, SIG_DFL);
    set_mode(before_);
}

bool client_terminal::is_to_stop() noexcept { return stop_wanted; }

void client_terminal::stop() {
    stop_wanted = false;
    termios mode{};
    if (::tcgetattr(STDIN_FILENO, &mode) == 0) of_owner_ = mode;
    set_mode(before_);
    std::signal(SIGTSTP, SIG_DFL);
    ::raise(SIGTSTP);
    std::signal(SIGTSTP, on_stop);
}

void client_terminal::take_back() {
    set_mode(of_owner_);
    of_owner_.reset();
}

}  // namespace ostrevan::remote
