#pragma once

#include <string>
#include <vector>

#include "player/terminal/command.h"
#include "player/view/menu_tree.h"

namespace ostrevan::terminal {

/// Prints a menu with its marks, submenus indented.
void print_menu(std::ostream& out, const std::vector<view::menu_entry>& menu);

/// Runs a command to its end. Throws when the entry is greyed; `when` ends that sentence, such as "for these tracks".
void run_entry(run_context& context, const view::menu_entry& entry, const char* when);

/// "Playback Statistics/Rating/4".
std::string path_of(const std::vector<view::menu_entry>& menu, const view::menu_entry& entry);

}  // namespace ostrevan::terminal
