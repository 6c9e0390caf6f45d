#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <utility>

#include "quorvel/store/record.h"

namespace bench {

using keyed_record = std::pair<std::uint64_t, quorvel::record_blob>;

/// Writes the records as rows in ascending order with SQLite alone, in one durable transaction into a new file: what an
/// index on the disk cannot be faster than. They are sorted here.
void write_sorted_rows(const std::filesystem::path& path, std::span<keyed_record> records);

}  // namespace bench
