#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>

#include "player/core/job_thread.h"
#include "player/system/failure_text.h"
#include "player/system/interrupt.h"
#include "player/system/temporary_folder.h"
#include "player/system/user_error.h"
#include "player/terminal/command_line.h"
#include "player/terminal/terminal_front_end.h"

namespace ostrevan::terminal {
namespace {

/// Carries out a command to its end, on the own thread of its job.
int carry_out(const chosen_command& chosen, run_context& context) {
    auto& screen = context.screen;
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

/// Runs the main loop until everything is done.
int run_with(const app::session_options& options, const chosen_command& chosen, terminal& screen, const core::job_ptr& job) {
    const core::job_thread thread(job);
    terminal_front_end ui(job, screen);
    const core::job::scope scope(job);
    app::session player(options, ui);
    int status = exit_failed;
    std::exception_ptr failure;
    const core::job::scope nobody(nullptr);
    job->run_on_own_thread([&, busy = std::make_shared<core::main_loop::activity>(player.loop)] {
        try {
            run_context context{player, screen, screen.out(), *job};
            status = carry_out(chosen, context);
        } catch (...) {
            failure = std::current_exception();
        }
    });
    player.run_until_idle();
    if (failure) std::rethrow_exception(failure);
    return status;
}

int run_all(const arguments& wanted, terminal& screen, const core::job_ptr& job) {
    const auto& checked = wanted.chosen.component_to_check;
    if (!checked) return run_with({wanted.profile, wanted.components, wanted.quiet}, wanted.chosen, screen, job);
    const auto parent = std::filesystem::temp_directory_path().string();
    const auto profile = system::temporary_folder::in(parent);
    if (!profile) throw std::runtime_error("No folder can be made in " + parent + ": name another one with TMPDIR.");
    return run_with({profile->path(), *checked, wanted.quiet}, wanted.chosen, screen, job);
}

int run_reporting(const arguments& wanted, terminal& screen, const core::job_ptr& job) {
    try {
        return run_all(wanted, screen, job);
    } catch (const system::user_error& error) {
        screen.error(error.what());
        return exit_usage;
    } catch (const std::exception& error) {
        screen.error(system::failure_text(error));
        return exit_failed;
    }
}

/// The exit status, after all output is written or has failed.
int final_status(int status, terminal& screen) {
    screen.out().flush();
    if (system::interrupted()) return exit_interrupted;
    const int problem = screen.output_error();
    // A reader that closed its end of the pipe has read enough.
    if (problem != 0 && problem != EPIPE)
        screen.error(std::string("standard output could not be written: ") + std::strerror(problem) + ".");
    return problem != 0 && status == exit_done ? exit_failed : status;
}

}  // namespace
}  // namespace ostrevan::terminal

int main(int count, char** values) {
    using namespace ostrevan;
    using namespace ostrevan::terminal;
    system::handle_interrupts();
    const auto parsed = parse_arguments(count, values);
    const auto* const nothing = std::get_if<nothing_to_run>(&parsed);
    const auto wanted = nothing == nullptr ? std::get<arguments>(parsed) : arguments{};
    const auto job = std::make_shared<core::job>(system::interrupted());
    ostrevan::terminal::terminal screen(own_side(), job, wanted.quiet, wanted.answers);
    if (nothing == nullptr) return final_status(run_reporting(wanted, screen, job), screen);
    if (nothing->status == exit_done) screen.out() << nothing->text << '\n';
    else screen.error(nothing->text);
    return final_status(nothing->status, screen);
}
