#include "player/library/disk_tracks.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include "player/library/folder_walk.h"
#include "player/library/name_filter.h"
#include "player/library/read_files.h"
#include "player/tags/reader.h"

namespace ostrevan::library {

std::vector<track_ptr> tracks_on_disk(track_table& tracks, const std::string& path) try {
    std::vector<track_ptr> found;
    for (const auto& read : read_tracks(path, tags::read_file)) {
        found.push_back(tracks.obtain(path, read.subsong));
        found.back()->publish(read.info);
    }
    return found;
} catch (const std::exception& error) {
    throw std::runtime_error(path + ": " + reason_of(error, path));
}

folder_on_disk folder_tracks_on_disk(track_table& tracks, const std::string& folder, const std::atomic<bool>& stop) {
    constexpr std::size_t workers_of_walk = 1;
    worker_group workers(workers_of_walk, &stop);
    const name_filter names;
    auto found = walk_folder(folder,
                             {.is_wanted = [&](std::string_view name) { return names.is_wanted(name); },
                              .is_ignored = [](const auto&) { return false; },
                              .is_of_interest = [](const auto&) { return true; },
                              .on_progress = [](const auto&) {}},
                             workers);
    folder_on_disk result;
    if (!found.root_reason.empty()) result.problems.push_back({folder, found.root_reason});
    for (auto& place : found.hidden) result.problems.push_back({std::move(place.path), std::move(place.reason)});

    // Sheets first: they claim their audio.
    std::ranges::sort(found.files, {}, [](const found_file& file) {
        return std::pair<bool, const std::string&>(!is_cue_path(file.path), file.path);
    });
    std::unordered_set<std::string> claimed;
    for (const auto& [path, stamp, device] : found.files) {
        if (stop) break;
        try {
            if (is_cue_path(path))
                for (auto& audio : locate_sheet(path).audio) claimed.insert(std::move(audio));
            if (claimed.contains(path)) continue;
            for (auto& track : tracks_on_disk(tracks, path)) result.tracks.push_back(std::move(track));
        } catch (const std::exception& error) {
            result.problems.push_back({path, reason_of(error, path)});
        }
    }
    return result;
}

}  // namespace ostrevan::library
