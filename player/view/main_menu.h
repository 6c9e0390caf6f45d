#pragma once

#include <vector>

#include "player/core/component_call.h"
#include "player/core/component_loader.h"
#include "player/view/menu_tree.h"

namespace ostrevan::view {

/// The current main menu: the commands of all components except hidden ones. A group that fails is reported and left out.
/// The player has no menus that a group could name as parent, so each component's groups are in a submenu of its name below
/// "Library". [main-thread]
std::vector<menu_entry> main_menu_of(const std::vector<core::loaded_component>& components,
                                     const core::component_guard& guard);

}  // namespace ostrevan::view
