#include "player/front/track_services.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "player/core/filesystems.h"
#include "player/front/disk_tracks.h"
#include "player/front/locations.h"
#include "player/library/read_files.h"
#include "player/tags/formats.h"
#include "player/tags/reader.h"

namespace ostrevan::front {
namespace {

class info_reader_impl : public input_info_reader {
public:
    info_reader_impl(std::string path, library::file_snapshots file) : path_(std::move(path)), file_(std::move(file)) {}

    file_info get_info(std::uint32_t subsong) override {
        const auto found = std::ranges::find(file_.tracks, subsong, &library::snapshot_track::subsong);
        if (found == file_.tracks.end())
            throw std::runtime_error(path_ + " has no part with the number " + std::to_string(subsong) + ".");
        return found->info->info();
    }

private:
    const std::string path_;
    const library::file_snapshots file_;
};

/// A file that is gone or damaged leaves its tracks without information.
void read_if_possible(library::track_table& tracks, const std::string& path) {
    try {
        tracks_on_disk(tracks, path);
    } catch (const std::exception&) {
        return;
    }
}

}  // namespace

metadb_handle_ptr metadb_impl::handle_create(const playable_location& location) {
    return metadb_handle_ptr(tracks_.obtain(normal_path(location.path), location.subsong));
}

void playlist_manager_impl::get_all_items(metadb_handle_list& out) const {
    check_main_thread(loop_, "playlist_manager::get_all_items");
    std::vector<metadb_handle_ptr> items;
    std::set<std::string> tried;
    for (const auto& name : playlists_.names()) {
        const auto entries = playlists_.entries(name);
        for (const auto& [path, subsong] : entries.value()) {
            const auto track = tracks_.obtain(path, subsong);
            if (!track->has_info() && is_local_path(path) && tried.insert(path).second) read_if_possible(tracks_, path);
            items.emplace_back(track);
        }
    }
    out = metadb_handle_list(std::move(items));
}

bool input_entry_impl::is_our_path(const char* path) const noexcept {
    return is_local_path(path) && (library::is_cue_path(path) || tags::has_supported_extension(path));
}

service_ptr_t<input_info_reader> input_entry_impl::open_for_info_read(const char* path) {
    const auto normal = normal_path(path);
    return service_new<info_reader_impl>(normal, library::read_tracks({normal, {}, 0}, tags::read_file));
}

}  // namespace ostrevan::front
