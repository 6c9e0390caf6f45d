#include <unistd.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "player/app/watching.h"
#include "player/system/interrupt.h"
#include "player/terminal/command.h"
#include "player/terminal/watch_output.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* serve_examples =
    "Examples:\n"
    "  ostrevan serve &\n"
    "  ostrevan serve --watch\n"
    "  ostrevan list\n"
    "  ostrevan quit\n"
    "Commands are fast while a process serves the profile: it has loaded everything already. Ends at SIGTERM, Ctrl-C or "
    "quit.";

constexpr const char* quit_examples =
    "Examples:\n"
    "  ostrevan quit\n"
    "Ends a playback, a watcher, or the process that serves the profile. Commands under way are finished.";

/// Counts what other players play until `is_over`; what happens is shown by the job's own thread.
void watch_beside(run_context& context, const app::watch_options& options, const std::atomic<bool>& is_over) {
    const core::job::scope own(std::make_shared<core::job>());
    app::watching watching(context.player, options, [&context](const app::watch_report& report) {
        context.job.run_on_own_thread([&context, report] { print_report(context, report); });
    });
    watching.run(is_over);
}

void serve(run_context& context, bool watches, const app::watch_options& wanted) {
    const auto options = with_whole_paths(wanted);
    auto& owner = context.owner;
    if (!context.is_own)
        throw std::runtime_error("Process " + std::to_string(::getpid()) + " owns the profile already and serves it.");
    if (!owner.obstacle.empty()) throw std::runtime_error(owner.obstacle);
    owner.is_serving = true;
    context.screen.note("Serving " + context.player.profile() + ".");
    std::atomic<bool> is_over = false;
    context.player.loop.start_thread([&stop = context.job.stop(), &owner, &is_over] {
        while (!stop && !owner.is_to_quit) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        is_over = true;
    });
    if (watches) context.player.loop.start_thread([&] { watch_beside(context, options, is_over); });
    context.job.wait_until_idle();
    context.job.stop() = false;  // this is how it is ended, and no failure
}

void quit(run_context& context) {
    if (context.is_own) throw std::runtime_error("No other process uses the profile.");
    const bool plays = context.on_main([&] {
        auto& playing = context.player.playing;
        playing.perform({playback::action::quit});
        return playing.now().has_value();
    });
    auto& owner = context.owner;
    if (owner.is_serving) owner.is_to_quit = true;
    else if (!plays && owner.is_lasting) system::interrupted() = true;
    else if (!plays)
        throw std::runtime_error("Process " + std::to_string(::getpid()) + " carries out a command, which ends by itself.");
}

const command_file serve_commands(150, [](declared_command& program) {
    const auto watches = std::make_shared<bool>(false);
    auto served = program.add("serve", "Keep the profile open for the commands of other processes", serve_examples);
    served.add_flag("--watch", *watches, "Count what other players play meanwhile, as 'ostrevan watch' does");
    const auto options = std::make_shared<app::watch_options>();
    declare_watch_options(served, *options, "--watch");
    served.choose([watches, options] {
        return chosen_command{.run = [watches, options](run_context& context) { serve(context, *watches, *options); },
                              .is_lasting = true};
    });
    program.add("quit", "End the process that plays, watches or serves", quit_examples).run(quit);
});

}  // namespace
}  // namespace ostrevan::terminal
