#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/cli/menu_output.h"
#include "player/front/main_menu.h"

namespace ostrevan::cli {

void run(run_context& context, const main_menu& arguments) {
    const auto menu = front::main_menu_of(context.player.components());
    if (!arguments.command) {
        print_menu(menu);
        return;
    }
    if (const auto id = nuv::parse_guid(*arguments.command)) {
        const auto* const entry = front::find_command(menu, *id);
        if (entry == nullptr) throw usage_error("The menu has no command " + *arguments.command + ".");
        return run_entry(*entry, "now");
    }
    run_entry(command_at(menu, *arguments.command), "now");
}

}  // namespace ostrevan::cli
