#include "player/terminal/running.h"

#include <cerrno>
#include <cstring>
#include <string>

#include "player/core/cause.h"

namespace ostrevan::terminal {
namespace {

int carry_out(const chosen_command& chosen, run_context& context) {
    auto& screen = context.screen;
    const core::cause_scope why(chosen.words);
    try {
        chosen.run(context);
    } catch (...) {
        context.job.wait_until_idle();  // finishes what the components have begun
        screen.end_progress();
        throw;
    }
    context.job.wait_until_idle();
    screen.end_progress();
    context.player.save();
    context.job.wait_until_idle();  // shows messages about saving
    const int status = screen.exit_status();
    if (status == exit_done) screen.note_unused_answers();
    return status;
}

}  // namespace

int run_to_end(const chosen_command& chosen, run_context& context) {
    return reporting(context.screen, [&] { return carry_out(chosen, context); });
}

int final_status(int status, terminal& screen, bool is_interrupted) {
    screen.out().flush();
    if (is_interrupted) return exit_interrupted;
    const int problem = screen.output_error();
    // A reader that closed its end of the pipe has read enough.
    if (problem != 0 && problem != EPIPE)
        screen.error(std::string("standard output could not be written: ") + std::strerror(problem) + ".");
    return problem != 0 && status == exit_done ? exit_failed : status;
}

}  // namespace ostrevan::terminal
