#include "player/library/scan_summary.h"

namespace ostrevan::library {
namespace {

std::string lines_of(const std::vector<std::string>& paths) {
    std::string text;
    for (const auto& path : paths) text += "\n  " + path;
    return text;
}

}  // namespace

std::string describe(const absent_place& place) {
    const auto kept =
        place.tracks_kept == 0 ? "" : " Tracks kept in the library: " + std::to_string(place.tracks_kept) + ".";
    switch (place.kind) {
        case absence::library_folder:
            return place.path + " is not there: " + place.reason + "." + kept +
                   " Connect the disk that it is on, or remove this folder from the library to drop its tracks.";
        case absence::hidden:
            return place.path + " cannot be looked into: " + place.reason + "." + kept +
                   " Make it readable, or delete it if it is not needed.";
        default:
            return place.path + " has lost files whose disk is not there." + kept +
                   " Connect the disk, or give their folder to 'ostrevan library ignore' to drop them.";
    }
}

std::string describe(const unclear_move& move) {
    return "These files are not there any more:" + lines_of(move.from) +
           "\nThe same sound has come to:" + lines_of(move.to) +
           "\nIt is not clear which became which, so no statistics have moved. To let them follow, give the new file the "
           "old "
           "tags, rescan, and edit it with 'ostrevan edit'.";
}

}  // namespace ostrevan::library
