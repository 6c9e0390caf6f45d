#pragma once

namespace ostrevan::system {

/// While it lives, keys reach the program one by one and are not echoed; Ctrl-C and Ctrl-Z stay signals. The terminal is as
/// before whenever the process stops or ends: by Ctrl-Z, a signal or a crash, but not by SIGKILL. At most one per process.
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
};

/// False for a job in the background, which should neither read nor draw.
bool is_in_foreground(int descriptor) noexcept;

}  // namespace ostrevan::system
