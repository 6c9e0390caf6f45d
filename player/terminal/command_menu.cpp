#include <iostream>

#include "player/terminal/commands.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/menu_output.h"
#include "player/terminal/switch_word.h"
#include "player/view/main_menu.h"

namespace ostrevan::terminal {
namespace {

const view::menu_entry& entry_of(const std::vector<view::menu_entry>& menu, const std::string& name) {
    const auto id = nuv::parse_guid(name);
    if (!id) return command_at(menu, name);
    const auto* const entry = view::find_command(menu, *id);
    if (entry == nullptr) throw usage_error("The menu has no command " + name + ".");
    return *entry;
}

/// The current mark of the command.
bool is_marked(run_context& context, const nuv::guid& id) {
    const auto menu = view::main_menu_of(context.player.components, context.player.services.guard());
    const auto* const entry = view::find_command(menu, id);
    return entry != nullptr && entry->is_checked;
}

}  // namespace

void run(run_context& context, const main_menu& arguments) {
    const auto menu = view::main_menu_of(context.player.components, context.player.services.guard());
    if (!arguments.command) return print_menu(menu);
    const auto& entry = entry_of(menu, *arguments.command);
    const bool before = entry.is_checked;
    const bool wanted = arguments.value ? parse_switch(*arguments.value) : !before;
    const auto refuse = [&] { throw usage_error("\"" + entry.text + "\" cannot be switched on or off."); };
    if (arguments.value && entry.text.ends_with("...")) refuse();  // it opens a dialog
    if (wanted != before) run_entry(context, entry, "now");
    const bool after = is_marked(context, entry.id);
    if (arguments.value && after != wanted) refuse();
    if (arguments.value || after != before) std::cout << entry.text << ": " << switch_word(after) << '\n';
    else context.screen.note_done(entry.text + " is done");
}

}  // namespace ostrevan::terminal
