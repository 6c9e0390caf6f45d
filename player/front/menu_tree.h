#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/context_menu.h"
#include "player/core/service_registry.h"

namespace ostrevan::front {

/// A context menu as it stands for one selection: submenus and commands, in the order in which components registered them.
/// It keeps what the components built for it, so it must be released before they are. [main-thread]
struct menu_entry {
    std::string text{};
    unsigned flags = 0;
    /// What the player knows the command by; zero for a submenu of the player's own making.
    nuv::guid id{};
    std::string description{};
    std::vector<menu_entry> children{};
    /// Empty for a submenu.
    std::function<void()> run{};

    [[nodiscard]] bool enabled() const noexcept { return (flags & (context_flag_disabled | context_flag_grayed)) == 0; }
    [[nodiscard]] bool checked() const noexcept { return (flags & context_flag_checked) != 0; }
};

/// `tracks` must live as long as the menu.
std::vector<menu_entry> context_menu_for(const service_registry& services, metadb_handle_list_cref tracks);

/// The command at a path of texts separated by "/", without regard to ASCII case. Throws with a message that lists what
/// stands at the place where the path fails, or says that it names a submenu.
const menu_entry& find_command(const std::vector<menu_entry>& menu, std::string_view path);

/// Runs a command by its identifier, without building the menu. False when no component has it.
bool run_command(const service_registry& services, const nuv::guid& id, metadb_handle_list_cref tracks);

}  // namespace ostrevan::front
