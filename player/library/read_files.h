#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "player/library/cue_files.h"
#include "player/library/folder_walk.h"
#include "player/library/scan_types.h"
#include "player/library/track.h"
#include "player/library/worker_group.h"

namespace ostrevan::library {

/// A file to read, with its stamp from before: later changes are seen by the next scan.
struct read_job {
    found_file found;
    std::int64_t folder = 0;  // of the library
};

/// Reads the tracks of one library file; throws with the reason. [any-thread]
scanned_file scan_file(const read_job& job, const info_reader& reader);

/// As `scan_file`, for tracks to be published without storing them.
std::vector<track_snapshot> read_tracks(const std::string& path, const info_reader& reader);

/// Called on the calling thread.
struct read_events {
    std::function<void(std::vector<scanned_file>&&)> on_read;  // in portions of at most a second
    std::function<void(file_problem&&)> on_problem;
    std::function<void(const std::string& path)> on_progress;
};

/// Reads all files on the threads of the group, in any order. `done` counts them.
void read_files(std::span<const read_job> jobs, const info_reader& reader, worker_group& workers,
                std::atomic<std::size_t>& done, const read_events& events);

/// Why a file could not be read, without the file name that some readers put in front.
std::string reason_of(const std::exception& failure, const std::string& path);

}  // namespace ostrevan::library
