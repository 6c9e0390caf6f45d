#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "player/library/scan_types.h"
#include "player/library/sound_moves.h"

namespace ostrevan::library {

/// What a scan did, for the user.
struct scan_summary {
    std::size_t tracks_added = 0;
    std::size_t tracks_updated = 0;
    std::size_t tracks_unchanged = 0;
    std::size_t tracks_removed = 0;
    std::size_t tracks_moved = 0;  // of the removed ones: to where some of the added ones are
    std::vector<unclear_move> unclear;
    std::vector<file_problem> refused;  // of the folders that were asked for
    std::vector<absent_place> absent;
    std::vector<file_problem> problems;
    bool is_stopped = false;  // what was read before is saved; the next scan goes on
};

/// Sentences for the user: what could not be looked at, that its tracks were kept, and what to do.
std::string describe(const absent_place& place);
std::string describe(const unclear_move& move);

}  // namespace ostrevan::library
