#pragma once

#include <vector>

#include "player/core/component_call.h"
#include "player/core/component_loader.h"
#include "player/view/menu_tree.h"

namespace ostrevan::view {

/// The main menu as it stands now: the commands of all components, without those that are hidden. A group that fails is
/// reported and left out. The player has no menus of
/// its own that a group could name as its parent, so each component's groups stand in the submenu of its name below
/// "Library". [main-thread]
std::vector<menu_entry> main_menu_of(const std::vector<core::loaded_component>& components,
                                     const core::component_guard& guard);

}  // namespace ostrevan::view
