#pragma once

#include <memory>

#include "player/watch/observation_queue.h"
#include "player/watch/player_filter.h"
#include "player/watch/source_thread.h"

namespace ostrevan::watch {

/// Tells what the MPRIS players of the session bus do. The player's own names are left out.
std::unique_ptr<source_thread> watch_mpris(observation_queue& out, player_filter wanted);

}  // namespace ostrevan::watch
