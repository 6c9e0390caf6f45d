#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// The user's playlists. [main-thread]
class playlist_manager : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{D2A3F0B8-53F1-4E65-9B0E-7F6C2A1D8E40}");

    /// The tracks of all playlists, in their order; a track may occur several times. All have their information
    /// except those whose files cannot be read.
    virtual void get_all_items(metadb_handle_list& out) const = 0;
};

}  // namespace ostrevan
