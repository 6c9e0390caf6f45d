#pragma once

#include <functional>
#include <shared_mutex>
#include <span>
#include <vector>

#include "player/library/cue_files.h"
#include "player/library/folder_rules.h"
#include "player/library/library_files.h"
#include "player/library/library_store.h"
#include "player/library/scan_types.h"

namespace ostrevan::library {

/// Receives scanned files, on the scanning thread, in portions of at most a second.
using scan_sink = std::function<void(std::vector<scanned_file>&&)>;

struct scan_request {
    std::uint64_t number = 0;  // higher than that of any earlier scan
    std::span<const library_folder> folders;
    const ignored_paths& ignored;
    std::shared_mutex& files_mutex;
};

/// Compares folders with what is known of them and reads what is new or has changed. Of `files` it changes only `seen` and
/// `seen_on`, which nobody else uses meanwhile; others may change the rest, with the mutex. What `sink` throws ends the
/// scan.
///
/// A folder that is missing, unreadable, or empty although it held files, is absent: an unmounted disk leaves an empty mount
/// point behind, and to lose a library to it is worse than to ask for a folder to be removed by name. Files below a folder
/// are not gone while their disk is away.
scan_report scan_folders(const scan_request& request, library_files& files, const info_reader& reader,
                         const scan_options& options, const scan_sink& sink);

}  // namespace ostrevan::library
