#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/advanced_settings.h"
#include "player/core/service_registry.h"

namespace ostrevan::view {

/// An entry of the advanced settings with its place in the tree.
struct setting_entry {
    advanced_setting* setting;
    /// Null for a branch.
    advanced_checkbox* checkbox;
    std::size_t depth;
};

/// Every entry, parents before their children, children by priority and then by label. An entry whose parent nobody offers
/// stands at the top.
std::vector<setting_entry> settings_tree(const core::service_registry& services);

/// The checkbox that a user means: by GUID, whole label, or a part of a label that fits only one. Throws with a message that
/// says what there is.
advanced_checkbox& find_checkbox(const std::vector<setting_entry>& tree, std::string_view name);

}  // namespace ostrevan::view
