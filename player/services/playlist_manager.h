#pragma once

#include "ostrevan/playlist.h"
#include "player/library/playlists.h"
#include "player/library/track_table.h"

namespace ostrevan::services {

/// The playlists for components, in byte order of their names. Tracks outside the library are read from the disk, to have
/// information where possible.
class playlist_manager_impl : public playlist_manager {
public:
    playlist_manager_impl(const library::playlists& playlists, library::track_table& tracks)
        : playlists_(playlists), tracks_(tracks) {}
    void get_all_items(metadb_handle_list& out) const override;

private:
    const library::playlists& playlists_;
    library::track_table& tracks_;
};

}  // namespace ostrevan::services
