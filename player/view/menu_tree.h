#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "nuv/guid.h"

namespace ostrevan::view {

/// A menu as it stands at one moment: submenus and commands, in the order in which components registered them. It keeps what
/// the components built for it, so it must be released before they are. [main-thread]
struct menu_entry {
    std::string text{};
    bool is_enabled = true;
    bool is_checked = false;
    /// The check mark is a radio mark.
    bool is_radio = false;
    /// What the player knows the command by; zero for a submenu of the player's own making.
    nuv::guid id{};
    std::string description{};
    std::vector<menu_entry> children{};
    /// Empty for a submenu.
    std::function<void()> run{};
};

/// The submenu at a path of texts separated by "/", made where it is missing.
std::vector<menu_entry>& submenu_at(std::vector<menu_entry>& menu, std::string_view path);

/// The command at a path of texts separated by "/", without regard to ASCII case. The end of a path is enough, "Rating/4",
/// and parts of its texts, "Monitor", where they fit one command only. Throws `std::invalid_argument` with a message that
/// lists what stands at the place where the path fails, the commands that it fits, or what the submenu holds that it names.
const menu_entry& find_command(const std::vector<menu_entry>& menu, std::string_view path);

/// The command with an identifier; null when it is not in the menu.
const menu_entry* find_command(const std::vector<menu_entry>& menu, const nuv::guid& id);

}  // namespace ostrevan::view
