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
    std::uint64_t device = 0;  // of the directory that it is in
};

/// A directory that could not be read, or a link that leads nowhere: what lies behind it is unknown.
struct hidden_place {
    std::string path;
    std::string reason;
    bool leads_nowhere = false;  // a link whose target is missing
};

struct walk_result {
    /// Why the folder itself cannot be looked at; empty when it can.
    std::string root_reason;
    /// The folder holds nothing that the walk would look at.
    bool is_empty = true;
    std::vector<found_file> files;  // in no promised order
    std::vector<hidden_place> hidden;
    /// False when the walk was stopped before it had seen everything.
    bool is_complete = false;
};

/// What a walk looks for. The first three are called by several threads.
struct walk_rules {
    /// By name alone.
    std::function<bool(std::string_view name)> is_wanted;
    /// Whether a file or directory is passed over.
    std::function<bool(const std::string& path)> is_ignored;
    /// Whether the result has to list the file.
    std::function<bool(const found_file& file)> is_of_interest;
    /// Told a directory that is being read, on the calling thread, about ten times a second.
    std::function<void(const std::string& directory)> on_progress;
};

/// Finds the files below one folder. Names that begin with a dot are passed over; symbolic links to files and directories
/// are followed. A directory that can be reached in several ways is visited once, under its own path if it lies below the
/// folder itself, else through the link that is found in the earlier round and then first in byte order: the same tree
/// always gives the same paths, and links cannot make a loop.
walk_result walk_folder(const std::string& root, const walk_rules& rules, worker_group& workers);

}  // namespace ostrevan::library
