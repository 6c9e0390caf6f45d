#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/cli/menu_output.h"
#include "player/front/context_menu.h"

namespace ostrevan::cli {

void run(run_context& context, const context_menu& arguments) {
    const auto tracks = tracks_of(context, arguments.tracks);
    const auto& services = context.player.services();
    if (!arguments.command) {
        print_menu(front::context_menu_for(services, tracks));
        return;
    }
    if (const auto id = nuv::parse_guid(*arguments.command)) {
        if (!front::run_context_command(services, *id, tracks))
            throw usage_error("No component has a command " + *arguments.command + ".");
        return;
    }
    const auto menu = front::context_menu_for(services, tracks);
    run_entry(command_at(menu, *arguments.command), "for these tracks");
}

}  // namespace ostrevan::cli
