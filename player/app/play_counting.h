#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ostrevan/statistics_collector.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"

namespace ostrevan::app {

/// The replies of the components to one play.
struct play_verdict {
    /// At least one component counted it.
    bool is_counted = false;
    bool has_failed = false;
    /// Why the others did not count it; one text per component, empty for those that did.
    std::vector<std::string> reasons{};

    /// The reasons as one clause for the user.
    [[nodiscard]] std::string reason() const;
};

/// Reports a play to every collector, and their verdict to `settled` once everything they posted has run. [main-thread]
void tell_of_play(core::main_loop& loop, const core::service_registry& services, const metadb_handle_ptr& track,
                  std::function<void(const play_verdict&)> settled);

}  // namespace ostrevan::app
