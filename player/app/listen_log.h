#pragma once

#include <string>

#include "player/app/known_tracks.h"
#include "player/index/index_store.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

/// Notes counted plays for good. [main-thread]
class listen_log {
public:
    listen_log(index::index_store& records, const services::index_manager_impl& index, known_tracks& known)
        : records_(records), index_(index), known_(known) {}

    /// Called under the cause that counted the play. `seconds` were heard until then; `player` is another program, or empty.
    void note_play(const metadb_handle_ptr& track, double seconds, const std::string& player);

private:
    index::index_store& records_;
    const services::index_manager_impl& index_;
    known_tracks& known_;
};

}  // namespace ostrevan::app
