#pragma once

#include <cstdint>

#include "quorvel/interchange/entry_writer.h"

namespace quorvel::pcdb_export {

/// Writes the statistics file: the records of the tracks, or of every key that has a record when `tracks` is null. `path` is
/// a path or location of the player. A file that is there is replaced, and the new one is on the disk when this returns.
/// `fields` is a set of `ExportFields`. Throws `std::runtime_error`, before anything is touched, when there is no index;
/// what the player's index throws for a record that cannot be read, and its file system; and `ostrevan::exception_aborted`
/// when the user stops it. A file left half-written stays. [main-thread]
void exportToFile(const char* path, std::uint32_t fields, const track_list* tracks);

}  // namespace quorvel::pcdb_export
