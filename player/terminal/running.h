#pragma once

#include <exception>

#include "player/system/failure_text.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Returns the exit status that `work` returns, or reports what it throws.
template <typename Work>
int reporting(terminal& screen, Work work) {
    try {
        return work();
    } catch (const system::user_error& error) {
        screen.error(error.what());
        return exit_usage;
    } catch (const std::exception& error) {
        screen.error(system::failure_text(error));
        return exit_failed;
    }
}

/// Carries out a command to its end and reports failures, on the own thread of its job. Returns the exit status.
int run_to_end(const chosen_command& chosen, run_context& context);

/// The exit status after all output is written or has failed.
int final_status(int status, terminal& screen, bool is_interrupted);

}  // namespace ostrevan::terminal
