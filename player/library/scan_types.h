#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "player/library/stored_file.h"

namespace ostrevan::library {

struct scan_progress {
    std::size_t files_done = 0;
    std::size_t files_known = 0;  // so far: grows while folders are still being looked through
    std::string folder;           // in which something was last looked at
};

struct scan_options {
    std::size_t workers = 4;
    /// Set to end the scan early, by any thread or a signal handler. May be null.
    const std::atomic<bool>* stop = nullptr;
    /// Called on the scanning thread, about ten times a second and at the end. May be empty.
    std::function<void(const scan_progress&)> on_progress;
};

/// A file that was read because it is new or has changed. Its tracks stay in their stored form: a scan that kept ten
/// thousand field lists in memory would spend more time on allocating them than on the database.
struct scanned_file {
    stored_file file;  // id and arrival are not known here
    std::vector<stored_track> tracks{};
    std::uint64_t seen = 0;  // number of the scan
};

struct file_problem {
    std::string path;
    std::string reason;
};

enum class absence { library_folder, hidden, other_disk };

/// A folder of the library, or something below one, that could not be looked into, or below which files are missing whose
/// disk is away. Its tracks were kept.
struct absent_place {
    std::string path;
    std::string reason;
    std::size_t tracks_kept = 0;
    absence kind = absence::hidden;
};

struct scan_report {
    std::vector<absent_place> absent;
    std::vector<file_problem> problems;
    std::vector<std::string> gone;             // paths of files that are known and not there any more; empty when stopped
    std::vector<std::int64_t> folders_seen;    // those that were gone through to the end
    std::vector<std::string> on_other_device;  // known files that were found on another device than the one stored
    std::size_t tracks_unchanged = 0;
    bool is_stopped = false;
};

}  // namespace ostrevan::library
