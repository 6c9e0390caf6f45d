#pragma once

#include <unistd.h>

#include <functional>
#include <string>

namespace ostrevan::terminal {

/// The user's side of a command.
struct user_side {
    int input = STDIN_FILENO;
    int output = STDOUT_FILENO;
    int error = STDERR_FILENO;
    std::string terminal_kind{};  ///< as in TERM
    std::string home{};           ///< for paths that begin with "~/"
    /// False for a command in the background of the terminal at a descriptor, which should neither read nor draw.
    /// [any-thread]
    std::function<bool(int descriptor)> is_in_foreground{};
};

/// That of this process.
user_side own_side();

}  // namespace ostrevan::terminal
