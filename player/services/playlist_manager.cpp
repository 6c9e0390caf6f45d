#include "player/services/playlist_manager.h"

#include <exception>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "player/core/main_loop.h"
#include "player/library/disk_tracks.h"
#include "player/system/local_path.h"

namespace ostrevan::services {
namespace {

/// Tracks of a missing or damaged file have no information.
void read_if_possible(library::track_table& tracks, const std::string& path) {
    try {
        library::tracks_on_disk(tracks, path);
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace

void playlist_manager_impl::get_all_items(metadb_handle_list& out) const {
    core::check_main_thread("playlist_manager::get_all_items");
    std::vector<metadb_handle_ptr> items;
    std::set<std::string> tried;
    for (const auto& name : playlists_.names()) {
        const auto entries = playlists_.entries(name);
        for (const auto& [path, subsong] : entries.value()) {
            const auto track = tracks_.obtain(path, subsong);
            if (!track->has_info() && system::is_local_path(path) && tried.insert(path).second)
                read_if_possible(tracks_, path);
            items.emplace_back(track);
        }
    }
    out = metadb_handle_list(std::move(items));
}

}  // namespace ostrevan::services
