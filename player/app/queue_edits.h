#pragma once

#include <functional>
#include <optional>

#include "player/app/session.h"

namespace ostrevan::app {

// For the own thread of a job.

/// The queue that plays or, when nothing plays, that kept for the next time.
struct current_queue {
    metadb_handle_list tracks{};  ///< by entry, with those that were removed
    playback::queue order;
    bool is_playing = false;
};
/// Empty when there is none.
std::optional<current_queue> find_queue(session& player);

/// Changes that queue, in a second thread when it plays. Returns false when the playback is over.
using queue_change = std::function<bool(playback::queue& order, bool is_playing)>;

/// Returns when everybody has been told, and the queue is saved. Throws what the change throws; nothing is changed then.
/// Waits while another job edits or begins to play; without an effect when the job is stopped before.
void edit_queue(session& player, const queue_change& change);
/// Adds tracks at the end or after the current track. When there is no queue, they become it.
void add_to_queue(session& player, const metadb_handle_list& tracks, bool is_next);

}  // namespace ostrevan::app
