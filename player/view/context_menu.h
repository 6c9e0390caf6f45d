#pragma once

#include <string>
#include <vector>

#include "ostrevan/context_menu.h"
#include "player/core/service_registry.h"
#include "player/view/menu_tree.h"

namespace ostrevan::view {

/// The context menu of a selection. `tracks` must live as long as the menu. [main-thread]
std::vector<menu_entry> context_menu_for(const core::service_registry& services, metadb_handle_list_cref tracks);

/// Runs a command by its identifier, without building the menu. Returns false when no component has it. [main-thread]
bool run_context_command(const core::service_registry& services, const nuv::guid& id, metadb_handle_list_cref tracks);

/// Where the menu has a rating: "Rating/4". 0 and none remove it; - and + are a step.
std::string rating_path(const std::string& stars);

}  // namespace ostrevan::view
