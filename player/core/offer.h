#pragma once

#include <utility>
#include <vector>

#include "ostrevan/service.h"
#include "player/core/service_registry.h"

namespace ostrevan::core {

/// Makes a service and registers it under the class of the contract that it implements. It is never destroyed: components
/// may keep a reference in a static object and release it while the process exits, long after the player has ended. Only
/// that release is allowed then.
template <typename Implementation, typename... Args>
Implementation& offer(service_registry& services, Args&&... args) {
    auto& service = *new service_uncounted_t<Implementation>(std::forward<Args>(args)...);
    static auto& all = *new std::vector<service_base*>;  // keeps them reachable for leak checkers
    all.push_back(&service);
    services.add(Implementation::class_guid, service);
    return service;
}

}  // namespace ostrevan::core
