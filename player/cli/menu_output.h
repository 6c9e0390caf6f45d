#pragma once

#include <string>
#include <vector>

#include "player/cli/commands.h"
#include "player/front/menu_tree.h"

namespace ostrevan::cli {

/// Prints a menu with its marks, submenus indented.
void print_menu(const std::vector<front::menu_entry>& menu);

/// The command at a path. Throws `usage_error` when there is none: a path that leads nowhere is the user's mistake.
const front::menu_entry& command_at(const std::vector<front::menu_entry>& menu, const std::string& path);

/// Runs a command to its end. Throws when the entry is greyed. `when` ends the sentence that says so: "for these tracks".
void run_entry(run_context& context, const front::menu_entry& entry, const char* when);

/// "Playback Statistics/Rating/4".
std::string path_of(const std::vector<front::menu_entry>& menu, const front::menu_entry& entry);

}  // namespace ostrevan::cli
