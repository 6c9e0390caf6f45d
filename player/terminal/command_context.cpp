#include "player/terminal/commands.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/menu_output.h"
#include "player/view/context_menu.h"

namespace ostrevan::terminal {
namespace {

std::string tracks_text(std::size_t count) { return "for " + std::to_string(count) + (count == 1 ? " track" : " tracks"); }

}  // namespace

void run(run_context& context, const context_menu& arguments) {
    const auto tracks = tracks_of(context, arguments.tracks);
    const auto& services = context.player.services;
    const auto what_for = tracks_text(tracks.get_count());
    if (!arguments.command) return print_menu(view::context_menu_for(services, tracks));
    if (const auto id = nuv::parse_guid(*arguments.command)) {
        if (!view::run_context_command(services, *id, tracks))
            throw usage_error("No component has a command " + *arguments.command + ".");
        context.player.run_until_idle();
        return context.screen.note_done("The command is done " + what_for);
    }
    if (tracks.empty()) return;
    const auto menu = view::context_menu_for(services, tracks);
    const auto& entry = command_at(menu, *arguments.command);
    run_entry(context, entry, "for these tracks");
    context.screen.note_done(path_of(menu, entry) + " is done " + what_for);
}

void run(run_context& context, const rate_tracks& arguments) {
    const bool is_none = arguments.stars == "0" || arguments.stars == "none";
    run(context, context_menu{"Rating/" + (is_none ? "not set" : arguments.stars), arguments.tracks});
}

}  // namespace ostrevan::terminal
