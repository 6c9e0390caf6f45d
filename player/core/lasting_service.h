#pragma once

#include <utility>
#include <vector>

#include "ostrevan/service.h"

namespace ostrevan {

/// A service that is never destroyed, so that a component may keep a reference to it, or to an extension of it, in a static
/// object: those let go of theirs while the process exits, long after the player has ended. What the service works with has
/// ended by then, so nothing else may be done with it.
template <typename Implementation>
class lasting_service {
public:
    template <typename... Args>
    explicit lasting_service(Args&&... args)
        : object_(*new service_uncounted_t<Implementation>(std::forward<Args>(args)...)) {
        static auto& all = *new std::vector<service_base*>;  // or a leak checker would report them
        all.push_back(&object_);
    }
    lasting_service(const lasting_service&) = delete;
    lasting_service& operator=(const lasting_service&) = delete;

    operator Implementation&() noexcept { return object_; }  // NOLINT(google-explicit-constructor): it is the service
    Implementation* operator->() noexcept { return &object_; }

private:
    service_uncounted_t<Implementation>& object_;
};

}  // namespace ostrevan
