#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/track.h"
#include "player/core/service_registry.h"

namespace ostrevan::view {

/// A column of a track list: title formatting scripts for display and for sorting.
struct column {
    std::string name;
    std::string display_script;
    std::string sort_script;
    bool align_right = false;
    /// The same in every run: layouts are kept by it.
    std::string id{};
    /// As wide as the part of a cell that can be clicked; empty when a click does nothing.
    std::string click_text{};
    /// A click there, from 0 at the beginning of that text to 1 at its end. Empty likewise. [main-thread]
    std::function<void(double place, metadb_handle_list_cref tracks)> click{};
};

/// The player's own columns, then those of components, in the order of their providers.
std::vector<column> all_columns(const core::service_registry& services);

/// The columns of a list unless others are given.
std::vector<column> default_columns(const core::service_registry& services);

/// The column with this name or with this unique part of its name, without regard to ASCII case. Throws with a message that
/// lists the names when there is none.
column find_column(const std::vector<column>& columns, std::string_view name);

}  // namespace ostrevan::view
