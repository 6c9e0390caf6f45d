#pragma once

#include <cstdint>

#include "ostrevan/track.h"

namespace quorvel {

/// Sets the date added of every track that has none. They are found before the transaction begins, so that other writers
/// wait for the writing only; if there are none, there is no transaction. [worker]
void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now);

}  // namespace quorvel
