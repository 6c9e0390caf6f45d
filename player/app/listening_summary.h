#pragma once

#include <optional>
#include <string>

#include "player/app/session.h"
#include "player/summary/figures.h"

namespace ostrevan::app {

/// The figures of the tracks that match `query`, or of everything that was played. Throws `system::user_error` for a mistake
/// in the query. For the own thread of a job.
summary::figures listening_summary(session& player, const std::optional<std::string>& query,
                                   const summary::question& wanted);

}  // namespace ostrevan::app
