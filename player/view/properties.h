#pragma once

#include <string>
#include <vector>

#include "ostrevan/track_properties.h"
#include "player/core/service_registry.h"

namespace ostrevan::view {

/// One section of the track properties, its rows in the order in which they are shown.
struct property_section {
    std::string name;
    struct row {
        double priority;
        std::string name;
        std::string value;
    };
    std::vector<row> rows;
};

/// The sections that the player and its components have for a selection, in the order in which they were reported.
std::vector<property_section> track_properties(const core::service_registry& services, metadb_handle_list_cref tracks);

}  // namespace ostrevan::view
