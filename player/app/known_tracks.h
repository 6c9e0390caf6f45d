#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "ostrevan/tag_edit.h"
#include "player/core/main_loop.h"
#include "player/history/similar_tracks.h"
#include "player/index/index_store.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

/// By the information that the track has now.
history::track_name name_of(metadb_handle& track);

/// Notes what records belong to, so that they can be told apart when their tracks are gone. [any-thread]
class known_tracks {
public:
    known_tracks(core::main_loop& loop, index::index_store& records, const services::index_manager_impl& index)
        : loop_(loop), records_(records), index_(index) {}

    void note(std::span<const metadb_handle_ptr> tracks);
    /// As posted work, in portions.
    void note_later(metadb_handle_list tracks);
    /// The records of edited tracks follow them: what belongs to a former key has moved on to the new one. Taking back the
    /// act that follows them takes this back, too.
    void note_edits(std::span<const tag_edit> edits);

private:
    void note_from(const std::shared_ptr<const metadb_handle_list>& tracks, std::size_t first);

    core::main_loop& loop_;
    index::index_store& records_;
    const services::index_manager_impl& index_;
};

}  // namespace ostrevan::app
