#pragma once

#include <string>
#include <vector>

#include "ostrevan/track_properties.h"
#include "player/core/service_registry.h"

namespace ostrevan::view {

/// One section of the track properties, with its rows in display order.
struct property_section {
    std::string name;
    struct row {
        double priority;
        std::string name;
        std::string value;
    };
    std::vector<row> rows;
};

/// The sections of the player and its components for a selection, in the order reported.
std::vector<property_section> track_properties(const core::service_registry& services, metadb_handle_list_cref tracks);

}  // namespace ostrevan::view
