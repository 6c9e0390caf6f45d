#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "player/index/index_store.h"

namespace ostrevan::history {

/// The records that differ from a copy of the database, each from what it is to what it is in the copy. The copy is not
/// changed. Throws std::runtime_error when it is damaged or no copy.
std::vector<index::index_changes> from_copy(const index::index_store& records, const std::filesystem::path& copy);

struct restored {
    std::vector<index::index_changes> changes{};
    std::int64_t act = 0;  ///< to take it back; 0 when nothing has changed
};

/// Makes all records those of a copy, in one transaction. The journal goes on. Throws likewise.
restored restore(index::index_store& records, const std::filesystem::path& copy);

}  // namespace ostrevan::history
