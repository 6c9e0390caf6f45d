#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ostrevan/component.h"
#include "ostrevan/component_version.h"

namespace ostrevan::core {

/// A component that passed the handshake. Its module stays loaded until the process ends, because its static objects remain
/// in use.
struct loaded_component {
    std::string path;
    component_api* api = nullptr;
    std::uint32_t interface_revision = 0;
};

/// Loads one module and checks its handshake before any virtual call. Throws with a message that names the file, the reason
/// and the remedy.
loaded_component load_component(const std::string& path, const player_interface& player);

/// Loads every module of a folder (`*.dll` on every platform) in the order of their names, or the one file at this path.
/// Those of `more`, which may be empty, replace those of the same name. Reports a folder that cannot be read and each module
/// that fails, and goes on.
std::vector<loaded_component> load_components(const std::string& path, const std::string& more,
                                              const player_interface& player,
                                              const std::function<void(const std::string& message)>& on_failure);

/// The version a component declares; null when it declares none. [main-thread]
const component_version* version_of(const loaded_component& component);
/// The component's title, or the name of its file. [main-thread]
std::string name_of(const loaded_component& component);

}  // namespace ostrevan::core
