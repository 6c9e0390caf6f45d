#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "player/library/library_changes.h"
#include "player/library/library_files.h"
#include "player/library/library_store.h"
#include "player/library/sound_moves.h"

namespace ostrevan::library {

/// What is there at a path now; what has left it when another sound has taken its place.
placed_sound sound_at(const std::string& path, const library_file& file, std::uint64_t scan);

/// The number of the scan that last went through the folder with that id.
std::uint64_t scan_of(std::span<const library_folder> folders, std::int64_t id) noexcept;

struct moved_files {
    std::vector<track_edit> edits;          // each with the location before
    std::unordered_set<std::string> paths;  // from which and to which files have moved
    std::vector<unclear_move> unclear;
};

/// Where the sound of files that are gone, and of those that had to give way to another one, has come to.
moved_files find_moved_files(const library_files& files, std::span<const library_folder> folders,
                             std::span<const std::string> gone, std::vector<placed_sound> displaced);

}  // namespace ostrevan::library
