#pragma once

#include <filesystem>
#include <vector>

#include "player/index/index_store.h"

namespace ostrevan::history {

/// The records that differ from a copy of the database, each from what it is to what it is in the copy. The copy is not
/// changed. Throws std::runtime_error when it is damaged or no copy.
std::vector<index::index_changes> from_copy(const index::index_store& records, const std::filesystem::path& copy);

/// Makes all records those of a copy, in one transaction, which can be taken back. The journal goes on. Returns what has
/// changed; throws likewise.
std::vector<index::index_changes> restore(index::index_store& records, const std::filesystem::path& copy);

}  // namespace ostrevan::history
