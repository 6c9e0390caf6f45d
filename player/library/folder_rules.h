#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "player/library/library_store.h"

namespace ostrevan::library {

/// The user asked for something that cannot be; the text says why, one line for each path.
class library_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Absolute and lexically normal, without a final separator. Symbolic links stay as they are given.
std::string normal_path(const std::string& path);

/// The normal paths of folders that may be added beside those that are there. Throws library_error for a path that does not
/// exist, is no folder, cannot be read, or is, holds or lies inside a folder of the library, also by way of links.
std::vector<std::string> check_new_folders(std::span<const std::string> paths, std::span<const library_folder> present);

/// The folders of these paths. Throws library_error for a path that is none of the library's.
std::vector<library_folder> check_known_folders(std::span<const std::string> paths, std::span<const library_folder> present);

}  // namespace ostrevan::library
