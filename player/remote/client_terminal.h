#pragma once

#include <termios.h>

#include <optional>

namespace ostrevan::remote {

/// The terminal of a client at standard input, whose mode the owner may change. It is as before whenever the client stops or
/// ends, also when the owner is killed. One per process. [main-thread]
class client_terminal {
public:
    client_terminal();
    ~client_terminal();
    client_terminal(const client_terminal&) = delete;
    client_terminal& operator=(const client_terminal&) = delete;

    /// Whether Ctrl-Z has been pressed.
    static bool is_to_stop() noexcept;
    /// Stops the process as Ctrl-Z does. Returns when it continues.
    void stop();
    /// The mode that the owner had set; for a job that is in the foreground again.
    void take_back();

private:
    std::optional<termios> before_;  // empty without a terminal
    bool has_stops_ = false;         // SIGTSTP is handled here
    std::optional<termios> of_owner_;
};

}  // namespace ostrevan::remote
