#pragma once

#include "ostrevan/playlist.h"
#include "player/core/main_loop.h"
#include "player/library/playlists.h"
#include "player/library/track_table.h"

namespace ostrevan::services {

/// The playlists for components, in byte order of their names. Tracks outside the library are read from the disk, to have
/// information where possible.
class playlist_manager_impl : public playlist_manager {
public:
    playlist_manager_impl(const core::main_loop& loop, const library::playlists& playlists, library::track_table& tracks)
        : loop_(loop), playlists_(playlists), tracks_(tracks) {}
    void get_all_items(metadb_handle_list& out) const override;

private:
    const core::main_loop& loop_;
    const library::playlists& playlists_;
    library::track_table& tracks_;
};

}  // namespace ostrevan::services
