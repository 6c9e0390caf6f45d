#pragma once

#include <functional>
#include <string>
#include <vector>

#include "player/core/component_loader.h"
#include "player/core/service_registry.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::app {

/// Receives a failure of a component; the others go on.
using component_failure = std::function<void(const std::string& message)>;

/// Adds the services and fields of components to the player's.
void register_components(const std::vector<core::loaded_component>& components, core::service_registry& services,
                         titleformat::component_fields& fields);

/// Lets each component check its own installation.
void check_installations(const std::vector<core::loaded_component>& components, const component_failure& on_failure);

/// Reads the components' settings, then runs the stages up to 30, `between`, the start-up notifications, and the stages
/// from 40.
void start_components(
    const std::vector<core::loaded_component>& components, const core::service_registry& services,
    const component_failure& on_failure, const std::function<void()>& between = [] {});

/// Announces the shutdown, then writes the components' settings back.
void end_components(const std::vector<core::loaded_component>& components, const core::service_registry& services,
                    const component_failure& on_failure);

}  // namespace ostrevan::app
