#pragma once

#include <span>
#include <string>
#include <vector>

#include "player/library/library_store.h"
#include "player/library/scan_types.h"

namespace ostrevan::library {

/// Absolute and lexically normal, without a final separator. Symbolic links stay as they are given.
std::string normal_path(const std::string& path);

// What does not fit goes to `refused` with the reason.

/// The normal paths of folders that may be added beside those that are there. Refused is what does not exist, is no folder,
/// cannot be read, or is, holds or lies inside a folder of the library, also by way of links.
std::vector<std::string> check_new_folders(std::span<const std::string> paths, std::span<const library_folder> present,
                                           std::vector<file_problem>& refused);

/// The folders of these paths.
std::vector<library_folder> check_known_folders(std::span<const std::string> paths, std::span<const library_folder> present,
                                                std::vector<file_problem>& refused);

/// The folders that these paths are or lie in, each once.
std::vector<library_folder> folders_around(std::span<const std::string> paths, std::span<const library_folder> present,
                                           std::vector<file_problem>& refused);

/// The normal paths of what may be left out of the library: what lies below one of its folders, there or not.
std::vector<std::string> check_ignored(std::span<const std::string> paths, std::span<const library_folder> present,
                                       std::vector<file_problem>& refused);

}  // namespace ostrevan::library
