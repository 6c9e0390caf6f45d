#pragma once

#include <optional>
#include <string>

#include "player/app/session.h"
#include "player/summary/figures.h"

namespace ostrevan::app {

/// Sums up what was played: of the tracks that match a query, or else of everything. Throws `system::user_error` when the
/// query has a mistake. For the own thread of a job.
summary::figures listening_summary(session& player, const std::optional<std::string>& query,
                                   const summary::question& wanted);

}  // namespace ostrevan::app
