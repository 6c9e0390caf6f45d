#pragma once

#include "ostrevan/configuration.h"

namespace quorvel {

/// "Monitor playing tracks": off means that plays are not counted at all. On by default. Read on any thread, set on the main
/// thread.
extern ostrevan::cfg_bool monitoring_enabled;

/// Whether a change of statistics also rewrites the statistics tags of the files. Off by default. Read on any thread, set on
/// the main thread.
extern ostrevan::cfg_bool tag_sync_enabled;

}  // namespace quorvel
