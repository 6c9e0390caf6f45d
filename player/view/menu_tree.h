#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "nuv/guid.h"

namespace ostrevan::view {

/// A menu at one moment: submenus and commands, in the order of registration. It owns what the components built for it, so
/// release it before them. [main-thread]
struct menu_entry {
    std::string text{};
    bool is_enabled = true;
    bool is_checked = false;
    /// The check mark is a radio button.
    bool is_radio = false;
    /// The identifier of the command; zero for submenus made by the player.
    nuv::guid id{};
    std::string description{};
    std::vector<menu_entry> children{};
    /// Empty for a submenu.
    std::function<void()> run{};
};

/// The submenu at a path of texts separated by "/"; creates missing ones.
std::vector<menu_entry>& submenu_at(std::vector<menu_entry>& menu, std::string_view path);

/// The command at a path of texts separated by "/", without regard to ASCII case. The end of a path suffices ("Rating/4"),
/// and so does a part of its texts ("Monitor"), if only one command matches. Otherwise throws `system::user_error` with
/// a message that lists the entries where the path fails, the commands that match, or the content of the submenu that it
/// names.
const menu_entry& find_command(const std::vector<menu_entry>& menu, std::string_view path);

/// The command with this identifier; null when the menu has none.
const menu_entry* find_command(const std::vector<menu_entry>& menu, const nuv::guid& id);

}  // namespace ostrevan::view
