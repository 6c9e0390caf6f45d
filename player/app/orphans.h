#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "player/app/session.h"
#include "player/index/index_changes.h"

namespace ostrevan::app {

// For the own thread of a job.

/// A record whose track is gone.
struct orphan {
    services::index_manager_impl::registration index;
    index::known_track known{};  ///< with the key; the texts are empty when nothing is known
    std::vector<std::byte> record{};
    struct home {
        metadb_handle_ptr track;
        bool is_exact;  ///< artist, album and title differ in case, accents and signs only
    };
    std::vector<home> homes{};  ///< tracks of the library with similar tags, the likeliest first
};

/// Which records without a track of the library are orphans: those that no track has taken over after an edit of its tags,
/// and whose file is gone; or all of them.
enum class orphan_choice { gone, all };

/// Sorted by index and key. `on_progress` receives the number of records compared. When the job is stopped, returns what was
/// found by then.
std::vector<orphan> find_orphans(session& player, orphan_choice choice,
                                 const std::function<void(std::size_t done, std::size_t total)>& on_progress);

/// Merges the record of a key into that of a track, as after an edit of its tags, and removes it. Throws
/// system::user_error when there is no such record, or a track of the library has it.
void attach_orphan(session& player, std::uint64_t key, const metadb_handle_ptr& track);

}  // namespace ostrevan::app
