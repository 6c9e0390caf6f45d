#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "player/library/library_file.h"

namespace ostrevan::library {

/// Runs a piece of work on the main thread, and waits for it.
using main_thread_runner = std::function<void(const std::function<void()>& work)>;
inline void run_here(const std::function<void()>& work) { work(); }

struct scan_progress {
    std::size_t files_done = 0;
    std::size_t files_known = 0;  // so far; grows during the walk
    std::string folder;           // the current folder
};

struct scan_options {
    std::size_t workers = 4;
    /// Set by any thread or a signal handler to end the scan early. May be null.
    const std::atomic<bool>* stop = nullptr;
    /// Called on the scanning thread, about ten times a second and at the end. May be empty.
    std::function<void(const scan_progress&)> on_progress;
    main_thread_runner on_main = run_here;
};

/// A file read because it is new or changed.
struct scanned_file {
    std::string path;
    stored_file file{};  // id and arrival not known yet
    std::vector<stored_track> tracks{};
};

struct file_problem {
    std::string path;
    std::string reason;
};

enum class absence { library_folder, hidden, other_disk };

/// A library folder, or a place below one, that cannot be read or has missing files because a disk is absent. Its tracks
/// were kept.
struct absent_place {
    std::string path;
    std::string reason;
    std::size_t tracks_kept = 0;
    absence kind = absence::hidden;
};

struct scan_report {
    std::vector<absent_place> absent;
    std::vector<file_problem> problems;
    std::vector<std::string> gone;             // paths of known files that are missing; empty when stopped
    std::vector<std::int64_t> folders_seen;    // those scanned to the end
    std::vector<std::string> on_other_device;  // known files found on another device than stored
    std::size_t tracks_unchanged = 0;
    bool is_stopped = false;
};

}  // namespace ostrevan::library
