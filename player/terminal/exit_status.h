#pragma once

#include <stdexcept>

namespace ostrevan::terminal {

/// What the process answers.
inline constexpr int exit_done = 0;
inline constexpr int exit_failed = 1;    ///< the reason is on standard error
inline constexpr int exit_usage = 2;     ///< the command line makes no sense
inline constexpr int exit_declined = 3;  ///< a question was answered with no, or by nobody
inline constexpr int exit_interrupted = 130;

/// The command line names something that cannot be: a query with a mistake, a column that is not there.
class usage_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace ostrevan::terminal
