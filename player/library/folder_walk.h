#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/file_stamp.h"
#include "player/library/worker_group.h"

namespace ostrevan::library {

struct found_file {
    std::string path;
    file_stamp stamp;
    std::uint64_t device = 0;  // of its directory
};

/// A directory that cannot be read, or a broken link: its content is unknown.
struct hidden_place {
    std::string path;
    std::string reason;
    bool leads_nowhere = false;  // a link whose target is missing
};

struct walk_result {
    /// Why the folder itself cannot be read; empty when it can.
    std::string root_reason;
    /// The folder has no entries that the walk considers.
    bool is_empty = true;
    std::vector<found_file> files;  // in any order
    std::vector<hidden_place> hidden;
    /// False when the walk was stopped early.
    bool is_complete = false;
};

/// The rules of a walk. The first three are called by several threads.
struct walk_rules {
    /// By the name alone.
    std::function<bool(std::string_view name)> is_wanted;
    /// Whether a file or directory is skipped.
    std::function<bool(const std::string& path)> is_ignored;
    /// Whether the file belongs in the result.
    std::function<bool(const found_file& file)> is_of_interest;
    /// Called with a directory being read, on the calling thread, about ten times a second.
    std::function<void(const std::string& directory)> on_progress;
};

/// Finds the files below one folder. Skips names that begin with a dot; follows symbolic links. A directory reachable in
/// several ways is visited once: under its own path if it is below the folder, else through the link found in the earliest
/// round, and of those the first in byte order. So the same tree always gives the same paths, and links cannot loop.
walk_result walk_folder(const std::string& root, const walk_rules& rules, worker_group& workers);

}  // namespace ostrevan::library
