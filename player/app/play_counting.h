#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ostrevan/statistics_collector.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"

namespace ostrevan::app {

/// What the components made of one play.
struct play_verdict {
    /// At least one has said that it counted it.
    bool is_counted = false;
    bool has_failed = false;
    /// Why the others did not; empty texts for those that did.
    std::vector<std::string> reasons{};

    /// The reasons as one clause for the user.
    [[nodiscard]] std::string reason() const;
};

/// Tells every collector of a play, and `settled` what they said, when everything they have posted has run. [main-thread]
void tell_of_play(core::main_loop& loop, const core::service_registry& services, const metadb_handle_ptr& track,
                  std::function<void(const play_verdict&)> settled);

}  // namespace ostrevan::app
