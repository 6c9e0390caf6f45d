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

/// The sound at a path. `scan` is when it came, or when it was last there.
placed_sound sound_at(std::string_view path, const library_file& file, std::uint64_t scan);

/// The number of the last scan of the folder with this id.
std::uint64_t scan_of(std::span<const library_folder> folders, std::int64_t id) noexcept;

struct moved_files {
    std::vector<track_edit> edits;          // each with its previous location
    std::unordered_set<std::string> paths;  // both ends of every move
    std::vector<unclear_move> unclear;
};

/// Finds the new place of sounds whose file is gone or was replaced by another sound.
moved_files find_moved_files(const library_files& files, std::span<const library_folder> folders,
                             std::span<const std::string> gone, std::vector<placed_sound> displaced);

}  // namespace ostrevan::library
