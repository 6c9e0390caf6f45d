#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ostrevan/component.h"
#include "ostrevan/component_version.h"

namespace ostrevan::core {

/// A component that answered the handshake. Its module stays loaded until the process ends: its static objects are in use.
struct loaded_component {
    std::string path;
    component_api* api = nullptr;
};

/// Loads one module and checks its handshake; no virtual call is made before that. Throws with a message that names the file
/// and says what is wrong and what to do.
loaded_component load_component(const std::string& path, const player_interface& player);

/// Loads every module (`*.dll`, the name on every platform) of a folder in the order of their names. One that fails is
/// reported and the rest go on; so is a folder that cannot be read.
std::vector<loaded_component> load_components(const std::string& folder, const player_interface& player,
                                              const std::function<void(const std::string& message)>& on_failure);

/// What a component says of itself; null when it says nothing. [main-thread]
const component_version* version_of(const loaded_component& component);
/// Its title, or else the name of its file. [main-thread]
std::string name_of(const loaded_component& component);

}  // namespace ostrevan::core
