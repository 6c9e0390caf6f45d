#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "player/library/scan_types.h"
#include "player/library/sound_moves.h"

namespace ostrevan::library {

/// The result of a scan, for the user.
struct scan_summary {
    std::size_t tracks_added = 0;
    std::size_t tracks_updated = 0;
    std::size_t tracks_unchanged = 0;
    std::size_t tracks_removed = 0;
    std::size_t tracks_moved = 0;  // removed tracks that are among the added ones
    std::vector<unclear_move> unclear;
    std::vector<file_problem> refused;  // requested folders
    std::vector<absent_place> absent;
    std::vector<file_problem> problems;
    bool is_stopped = false;  // what was read is saved; the next scan continues
};

/// Sentences for the user: what is unreadable, that its tracks were kept, and the remedy.
std::string describe(const absent_place& place);
std::string describe(const unclear_move& move);

}  // namespace ostrevan::library
