#pragma once

#include <string>
#include <utility>
#include <vector>

#include "player/core/component_loader.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

/// A component as its author sees it: "Services" and the like, each with its value; empty ones are left out. `indexes` are
/// those of all components. [main-thread]
std::vector<std::pair<std::string, std::string>> describe(
    const core::loaded_component& component, const std::vector<services::index_manager_impl::registration>& indexes);

}  // namespace ostrevan::app
