#pragma once

#include <string>
#include <vector>

#include "player/app/session.h"

namespace ostrevan::app {

// For the own thread of a job.

/// The tracks of the library that match a query.
metadb_handle_list find_tracks(session& player, const std::string& query);

/// The tracks at places named by the user.
struct selection {
    metadb_handle_list tracks{};
    /// Files that are not audio by their names, such as covers.
    std::vector<std::string> no_audio{};
    /// One sentence for each place that is missing or cannot be read.
    std::vector<std::string> problems{};
};

/// A place is a file, one subsong, all subsongs of a CUE sheet, or a folder, whose tracks come in listening order. Tracks
/// outside the library are read from the disk.
selection tracks_at(session& player, const std::vector<std::string>& places);

/// Call it before a command changes records: it notes the names of their tracks, for the time when these are gone. Tracks of
/// the library are noted when they leave it anyway, so a large selection needs only the others.
void note_chosen(session& player, metadb_handle_list_cref tracks);

}  // namespace ostrevan::app
