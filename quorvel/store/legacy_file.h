#pragma once

#include <vector>

#include "ostrevan/filesystem.h"
#include "ostrevan/track.h"
#include "quorvel/store/record.h"

namespace quorvel {

/// One record of the file in which early releases kept their statistics.
struct legacy_record {
    ostrevan::playable_location location;
    t_playback_stats stats;
};

/// Reads a whole file, in its order. Throws `ostrevan_io::exception_io_data` for a file of another kind, and
/// `ostrevan_io::exception_io_data_truncation` if it ends inside a record. Uses memory for the bytes that are there, not for
/// those that a damaged file claims.
std::vector<legacy_record> read_legacy_file(ostrevan::file& file);

}  // namespace quorvel
