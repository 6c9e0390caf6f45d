#pragma once

#include <termios.h>

namespace ostrevan::system {

/// While it lives, keys reach the program one by one and are not echoed; Ctrl-C and Ctrl-Z stay signals. The terminal of
/// this process, at standard input, is as before whenever the process stops or ends: by Ctrl-Z, a signal or a crash, but not
/// by SIGKILL. At most one per terminal.
class raw_terminal {
public:
    /// `descriptor` must be a terminal.
    explicit raw_terminal(int descriptor);
    ~raw_terminal();
    raw_terminal(const raw_terminal&) = delete;
    raw_terminal& operator=(const raw_terminal&) = delete;

    /// Gives the terminal back for a while, to read whole lines. [main-thread]
    void suspend();
    /// Takes it again; a job in the background has to wait. Returns whether keys can be read. [any-thread]
    bool resume();

private:
    static void catch_signals();
    static void release_signals();

    const int descriptor_;
    const bool is_own_;
    // Of the terminal of another process, which looks after its signals.
    bool is_raw_ = false;
    termios cooked_{};
};

/// False for a job in the background, which should neither read nor draw.
bool is_in_foreground(int descriptor) noexcept;

}  // namespace ostrevan::system
