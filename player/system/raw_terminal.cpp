#include "player/system/raw_terminal.h"

#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <utility>

namespace ostrevan::system {
namespace {

// Shared with the signal handlers.
int terminal = -1;
termios cooked{};
std::atomic<bool> is_raw{false};
std::atomic<bool> is_wanted{false};
std::atomic<bool> is_ending{false};  // by a signal; another one may end the process before the terminal is given back

constexpr std::array caught{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTSTP, SIGCONT};
std::array<struct sigaction, caught.size()> former{};

/// Keeps the mode before; one without lines was left behind by a job that was stopped.
bool make_raw(int descriptor, termios& before) noexcept {
    termios mode{};
    ::tcgetattr(descriptor, &mode);
    if ((mode.c_lflag & ICANON) != 0) before = mode;
    mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    mode.c_cc[VMIN] = 1;
    mode.c_cc[VTIME] = 0;
    return ::tcsetattr(descriptor, TCSANOW, &mode) == 0;
}

/// A job in the background would be stopped for changing the terminal.
void leave() noexcept {
    const int before = errno;
    if (is_raw.exchange(false) && is_in_foreground(terminal)) ::tcsetattr(terminal, TCSANOW, &cooked);
    errno = before;
}

void enter() noexcept {
    const int before = errno;
    if (is_wanted && !is_raw && is_in_foreground(terminal)) is_raw = make_raw(terminal, cooked);
    errno = before;
}

void on_caught_signal(int signal) noexcept;

void set_handler(std::size_t index, void (*handler)(int)) noexcept {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART | SA_NODEFER;  // so that a handler can raise its own signal
    ::sigaction(caught[index], &action, nullptr);
}

void raise_default(std::size_t index) noexcept {
    set_handler(index, SIG_DFL);
    ::raise(caught[index]);
}

void on_caught_signal(int signal) noexcept {
    std::size_t index = 0;
    while (caught[index] != signal) ++index;
    if (signal == SIGCONT) {
        is_raw = false;  // the shell has changed it
        return enter();
    }
    leave();
    if (signal == SIGTSTP) {
        raise_default(index);  // returns when the process continues
        set_handler(index, on_caught_signal);
        return enter();
    }
    is_wanted = false;
    is_ending = true;
    if (former[index].sa_handler == SIG_DFL) raise_default(index);
    else former[index].sa_handler(signal);
}

}  // namespace

bool is_in_foreground(int descriptor) noexcept {
    const auto group = ::tcgetpgrp(descriptor);
    return group == ::getpgrp() || group == -1;  // without jobs, as when another program has made the terminal
}

raw_terminal::raw_terminal(int descriptor) : descriptor_(descriptor), is_own_(descriptor == STDIN_FILENO) {
    auto& before = is_own_ ? cooked : cooked_;
    ::tcgetattr(descriptor, &before);
    before.c_lflag |= ICANON | ECHO;
    if (is_own_) catch_signals();
    resume();
}

raw_terminal::~raw_terminal() {
    suspend();
    if (is_own_) release_signals();
}

void raw_terminal::catch_signals() {
    terminal = STDIN_FILENO;
    is_ending = false;
    for (std::size_t i = 0; i < caught.size(); ++i) {
        ::sigaction(caught[i], nullptr, &former[i]);
        const bool is_other = (former[i].sa_flags & SA_SIGINFO) != 0;  // such as those of a sanitizer
        if (former[i].sa_handler != SIG_IGN && !is_other) set_handler(i, on_caught_signal);
    }
}

void raw_terminal::release_signals() {
    for (std::size_t i = 0; i < caught.size(); ++i) {
        struct sigaction now {};
        ::sigaction(caught[i], nullptr, &now);
        if ((now.sa_flags & SA_SIGINFO) == 0 && now.sa_handler == on_caught_signal)
            ::sigaction(caught[i], &former[i], nullptr);
    }
}

void raw_terminal::suspend() {
    if (!is_own_) {
        if (std::exchange(is_raw_, false)) ::tcsetattr(descriptor_, TCSANOW, &cooked_);
        return;
    }
    is_wanted = false;
    leave();
}

bool raw_terminal::resume() {
    if (!is_own_) return is_raw_ = is_raw_ || make_raw(descriptor_, cooked_);
    if (is_ending) return false;
    is_wanted = true;
    enter();
    return is_raw;
}

}  // namespace ostrevan::system
