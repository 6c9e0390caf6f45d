#include "player/app/scan_report.h"

#include "player/system/counted.h"

namespace ostrevan::app {

std::vector<std::string> scan_problems(const library::scan_summary& done) {
    std::vector<std::string> lines;
    for (const auto& place : done.absent) lines.push_back(library::describe(place));
    for (const auto& [path, reason] : done.problems) lines.push_back(path + ": " + reason);
    return lines;
}

std::vector<std::string> scan_notes(const library::scan_summary& done) {
    std::vector<std::string> lines{system::counted(done.tracks_added, "track") + " added, " +
                                   std::to_string(done.tracks_updated) + " updated, " + std::to_string(done.tracks_removed) +
                                   " removed, " + std::to_string(done.tracks_unchanged) + " unchanged."};
    if (done.tracks_moved != 0)
        lines.push_back(std::to_string(done.tracks_moved) +
                        (done.tracks_moved == 1 ? " of the removed tracks is" : " of the removed tracks are") +
                        " among the added ones under another name; the statistics follow.");
    for (const auto& move : done.unclear) lines.push_back(library::describe(move));
    return lines;
}

}  // namespace ostrevan::app
