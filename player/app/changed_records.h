#pragma once

#include <cstdint>
#include <vector>

#include "player/app/session.h"

namespace ostrevan::app {

// For the own thread of a job.

/// The tracks of the library with these keys, in the order of the library.
struct keyed_track {
    metadb_handle_ptr track;
    std::uint64_t key;
};
std::vector<keyed_track> tracks_with_keys(session& player, const nuv::guid& index, std::vector<std::uint64_t> keys);

/// Redraws what shows records that the player has changed itself, and tells their component, whose file tags may follow.
void tell_of_changed_records(session& player, const nuv::guid& index, const std::vector<std::uint64_t>& keys);

}  // namespace ostrevan::app
