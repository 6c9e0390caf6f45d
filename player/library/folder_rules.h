#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/library_store.h"
#include "player/library/scan_types.h"

namespace ostrevan::library {

/// Files and folders inside library folders that the user does not want in the library.
using ignored_paths = std::set<std::string, std::less<>>;

/// True for `place` itself as well. "/Music/Alpha" is not below "/Music/A". Paths are normal.
bool is_below(std::string_view path, std::string_view place) noexcept;

// Unsuitable paths are added to `refused` with the reason.

/// The normal paths of folders that may be added. Refused are paths that do not exist, are not folders or cannot be read,
/// and those equal to, above or below a folder of the library, also by way of links.
std::vector<std::string> check_new_folders(std::span<const std::string> paths, std::span<const library_folder> present,
                                           std::vector<file_problem>& refused);

/// The library folders at these paths.
std::vector<library_folder> check_known_folders(std::span<const std::string> paths, std::span<const library_folder> present,
                                                std::vector<file_problem>& refused);

/// The library folders at or around these paths, each once.
std::vector<library_folder> folders_around(std::span<const std::string> paths, std::span<const library_folder> present,
                                           std::vector<file_problem>& refused);

/// The normal paths that may be ignored: those below a library folder, whether they exist or not.
std::vector<std::string> check_ignored(std::span<const std::string> paths, std::span<const library_folder> present,
                                       std::vector<file_problem>& refused);

}  // namespace ostrevan::library
