#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <utility>

#include "quorvel/store/record.h"

namespace bench {

using keyed_record = std::pair<std::uint64_t, quorvel::record_blob>;

/// Sorts the records and writes them with SQLite alone, in one durable transaction into a new file: the floor for an index
/// on the disk.
void write_sorted_rows(const std::filesystem::path& path, std::span<keyed_record> records);

}  // namespace bench
