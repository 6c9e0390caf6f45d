#pragma once

#include <cstdint>

#include "ostrevan/track.h"

namespace quorvel {

/// Sets the date added of every track that has none. Tracks are sought out first without writing rights, so that other
/// writers wait only while what was found is written; when nothing is found there is no transaction. [worker]
void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now);

}  // namespace quorvel
