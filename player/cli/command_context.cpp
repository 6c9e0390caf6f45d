#include <iostream>

#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/front/menu_tree.h"

namespace ostrevan::cli {
namespace {

const char* mark_of(const front::menu_entry& entry) {
    if (!entry.checked()) return "";
    return (entry.flags & context_flag_radio) != 0 ? " (*)" : " [x]";
}

void print_menu(const std::vector<front::menu_entry>& level, std::size_t depth) {
    for (const auto& entry : level) {
        std::cout << std::string(2 * depth, ' ') << entry.text << (entry.run ? "" : "/") << mark_of(entry);
        if (!entry.enabled()) std::cout << " (greyed)";
        std::cout << '\n';
        print_menu(entry.children, depth + 1);
    }
}

/// A path that leads nowhere is the user's mistake; what a command throws is not.
const front::menu_entry& command_in(const std::vector<front::menu_entry>& menu, const std::string& path) {
    try {
        return front::find_command(menu, path);
    } catch (const std::invalid_argument& error) {
        throw usage_error(error.what());
    }
}

}  // namespace

void run(run_context& context, const context_menu& arguments) {
    const auto tracks = tracks_of(context, arguments.tracks);
    const auto& services = context.player.services();
    if (!arguments.command) {
        print_menu(front::context_menu_for(services, tracks), 0);
        return;
    }
    if (const auto id = nuv::parse_guid(*arguments.command)) {
        if (!front::run_command(services, *id, tracks))
            throw usage_error("No component has a command " + *arguments.command + ".");
        return;
    }
    const auto menu = front::context_menu_for(services, tracks);
    const auto& entry = command_in(menu, *arguments.command);
    if (!entry.enabled()) throw std::runtime_error("\"" + entry.text + "\" is greyed for these tracks.");
    entry.run();
}

}  // namespace ostrevan::cli
