#pragma once

namespace ostrevan::terminal {

/// The exit status of the process.
inline constexpr int exit_done = 0;
inline constexpr int exit_failed = 1;    ///< the reason is on standard error
inline constexpr int exit_usage = 2;     ///< the command line is wrong
inline constexpr int exit_declined = 3;  ///< a question was answered with no, or not at all
inline constexpr int exit_interrupted = 130;

}  // namespace ostrevan::terminal
