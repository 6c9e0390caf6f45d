#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "player/system/failure_text.h"
#include "player/system/interrupt.h"
#include "player/system/temporary_folder.h"
#include "player/system/user_error.h"
#include "player/terminal/command_line.h"

namespace ostrevan::terminal {
namespace {

int run_with(const app::session_options& options, const chosen_command& chosen, terminal& screen) {
    app::session player(options, screen);
    run_context context{player, screen};
    try {
        chosen.run(context);
    } catch (...) {
        player.run_until_idle();  // finishes what the components have begun
        screen.end_progress();
        throw;
    }
    player.run_until_idle();
    screen.end_progress();
    player.save();
    player.run_until_idle();  // shows messages about saving
    const int status = screen.exit_status();
    if (status == exit_done) screen.note_unused_answers();
    return status;
}

int run_all(const arguments& wanted, terminal& screen) {
    const auto& checked = wanted.chosen.component_to_check;
    if (!checked) return run_with({wanted.profile, wanted.components, wanted.quiet}, wanted.chosen, screen);
    const auto parent = std::filesystem::temp_directory_path().string();
    const auto profile = system::temporary_folder::in(parent);
    if (!profile) throw std::runtime_error("No folder can be made in " + parent + ": name another one with TMPDIR.");
    return run_with({profile->path(), *checked, wanted.quiet}, wanted.chosen, screen);
}

int run_reporting(const arguments& wanted, terminal& screen) {
    try {
        return run_all(wanted, screen);
    } catch (const system::user_error& error) {
        screen.error(error.what());
        return exit_usage;
    } catch (const std::exception& error) {
        screen.error(system::failure_text(error));
        return exit_failed;
    }
}

/// The exit status, after all output is written or has failed.
int final_status(int status, terminal& screen, standard_output& output) {
    output.flush();
    // A reader that closed its end of the pipe has read enough.
    if (output.error() != 0 && output.error() != EPIPE)
        screen.error(std::string("standard output could not be written: ") + std::strerror(output.error()) + ".");
    if (system::interrupted()) return exit_interrupted;
    return output.error() != 0 && status == exit_done ? exit_failed : status;
}

}  // namespace
}  // namespace ostrevan::terminal

int main(int count, char** values) {
    using namespace ostrevan::terminal;
    ostrevan::system::handle_interrupts();
    standard_output output;
    const auto parsed = parse_arguments(count, values);
    const auto* const nothing = std::get_if<nothing_to_run>(&parsed);
    const auto wanted = nothing == nullptr ? std::get<arguments>(parsed) : arguments{};
    terminal screen(wanted.quiet, wanted.answers, output);
    if (nothing == nullptr) return final_status(run_reporting(wanted, screen), screen, output);
    if (nothing->status == exit_done) std::cout << nothing->text << '\n';
    else screen.error(nothing->text);
    return final_status(nothing->status, screen, output);
}
