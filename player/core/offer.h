#pragma once

#include <utility>
#include <vector>

#include "ostrevan/service.h"
#include "player/core/service_registry.h"

namespace ostrevan::core {

/// Makes a service and offers it under the contract's class that it implements. It is never destroyed, so that a component
/// may keep a reference to it, or to an extension of it, in a static object: those let go of theirs while the process exits,
/// long after the player has ended. What the service works with has ended by then, so nothing else may be done with it.
template <typename Implementation, typename... Args>
Implementation& offer(service_registry& services, Args&&... args) {
    auto& service = *new service_uncounted_t<Implementation>(std::forward<Args>(args)...);
    static auto& all = *new std::vector<service_base*>;  // or a leak checker would report them
    all.push_back(&service);
    services.add(Implementation::class_guid, service);
    return service;
}

}  // namespace ostrevan::core
