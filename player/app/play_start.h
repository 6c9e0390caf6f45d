#pragma once

#include <optional>
#include <vector>

#include "player/app/kept_queue.h"
#include "player/app/session.h"

namespace ostrevan::app {

// For the own thread of a job.

/// The tracks at stored locations. Those outside the library are read from the disk; the ones that cannot be read have no
/// information.
metadb_handle_list tracks_of_entries(session& player, const std::vector<playable_location>& entries);

/// What shuffling needs to know of tracks.
std::vector<playback::shuffle_traits> traits_of(session& player, const metadb_handle_list& tracks);
/// What is played for each track, or why it cannot be.
std::vector<playback::play_item> items_of(const metadb_handle_list& tracks);

/// A new start with these tracks, shuffled differently each time. There must be a track.
play_start start_with(session& player, metadb_handle_list tracks, playback::play_modes modes);
/// Where the last playback of this profile stopped; empty when there was none.
std::optional<play_start> start_again(session& player);

}  // namespace ostrevan::app
