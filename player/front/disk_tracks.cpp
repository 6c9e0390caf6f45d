#include "player/front/disk_tracks.h"

#include "player/library/read_files.h"
#include "player/tags/reader.h"

namespace ostrevan::front {

std::vector<library::track_ptr> tracks_on_disk(library::track_table& tracks, const std::string& path) {
    std::vector<library::track_ptr> found;
    for (const auto& read : library::read_tracks({path, {}, 0}, tags::read_file).tracks) {
        found.push_back(tracks.obtain(path, read.subsong));
        found.back()->publish(read.info);
    }
    return found;
}

}  // namespace ostrevan::front
