#pragma once

#include "ostrevan/input.h"
#include "ostrevan/metadb.h"
#include "ostrevan/playlist.h"
#include "player/core/main_loop.h"
#include "player/library/playlists.h"
#include "player/library/track_table.h"

namespace ostrevan::front {

/// Track handles for components: those of the library, by whatever form of its path a track is asked for.
class metadb_impl : public metadb {
public:
    explicit metadb_impl(library::track_table& tracks) : tracks_(tracks) {}
    [[nodiscard]] metadb_handle_ptr handle_create(const playable_location& location) override;

private:
    library::track_table& tracks_;
};

/// The playlists for components, in alphabetical order of their names. Tracks that the library does not hold are read from
/// the disk, so that they have information wherever it can be had.
class playlist_manager_impl : public playlist_manager {
public:
    playlist_manager_impl(const main_loop& loop, const library::playlists& playlists, library::track_table& tracks)
        : loop_(loop), playlists_(playlists), tracks_(tracks) {}
    void get_all_items(metadb_handle_list& out) const override;

private:
    const main_loop& loop_;
    const library::playlists& playlists_;
    library::track_table& tracks_;
};

/// Reads audio files and CUE sheets of this machine, as a scan of the library does.
class input_entry_impl : public input_entry {
public:
    [[nodiscard]] bool is_our_path(const char* path) const noexcept override;
    [[nodiscard]] service_ptr_t<input_info_reader> open_for_info_read(const char* path) override;
};

}  // namespace ostrevan::front
