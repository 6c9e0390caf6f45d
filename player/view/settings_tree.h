#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/advanced_settings.h"
#include "player/core/service_registry.h"

namespace ostrevan::view {

/// An entry in the tree of advanced settings.
struct setting_entry {
    advanced_setting* setting;
    /// Null for a branch.
    advanced_checkbox* checkbox;
    std::size_t depth;
};

/// All entries, parents before children, children by priority and then by label. An entry whose parent is missing is at the
/// top.
std::vector<setting_entry> settings_tree(const core::service_registry& services);

/// The checkbox with this GUID, label, or unique part of a label. Throws with a message that lists what there is.
advanced_checkbox& find_checkbox(const std::vector<setting_entry>& tree, std::string_view name);

}  // namespace ostrevan::view
