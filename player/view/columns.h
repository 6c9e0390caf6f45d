#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "player/core/service_registry.h"

namespace ostrevan::view {

/// A column of a list of tracks: what it shows and what it is sorted by, as title formatting scripts.
struct column {
    std::string name;
    std::string display_script;
    std::string sort_script;
    bool align_right = false;
};

/// The player's own columns, then those that components offer, in the order of their providers.
std::vector<column> all_columns(const core::service_registry& services);

/// What a list shows when nothing else is asked for.
std::vector<column> default_columns(const core::service_registry& services);

/// A column by its name, or by a part of it that no other has, without regard to ASCII case. Throws with a message that
/// lists the names when there is none.
column find_column(const std::vector<column>& columns, std::string_view name);

}  // namespace ostrevan::view
