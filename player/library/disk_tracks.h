#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "player/library/scan_types.h"
#include "player/library/track_table.h"

namespace ostrevan::library {

/// The tracks of a file outside the library, read from the disk and kept until the player ends. Throws with the reason when
/// the file cannot be read. [any-thread]
std::vector<track_ptr> tracks_on_disk(track_table& tracks, const std::string& path);

/// The content of a folder on the disk.
struct folder_on_disk {
    std::vector<track_ptr> tracks;
    std::vector<file_problem> problems;
};

/// The tracks of every file below a folder outside the library, as a scan would find them: audio of a CUE sheet is not
/// listed by itself. Ends early when `stop` becomes true. [any-thread]
folder_on_disk folder_tracks_on_disk(track_table& tracks, const std::string& folder, const std::atomic<bool>& stop);

}  // namespace ostrevan::library
