#include "player/library/moved_files.h"

#include <algorithm>
#include <utility>

namespace ostrevan::library {

placed_sound sound_at(std::string_view path, const library_file& file, std::uint64_t scan) {
    placed_sound sound{std::string(path), file.sound.value_or(0), scan, {}};
    for (const auto& track : file.tracks) sound.tracks.push_back({track->location().subsong, track->info()});
    return sound;
}

std::uint64_t scan_of(std::span<const library_folder> folders, std::int64_t id) noexcept {
    const auto found = std::ranges::find(folders, id, &library_folder::id);
    return found != folders.end() ? found->scanned : 0;
}

moved_files find_moved_files(const library_files& files, std::span<const library_folder> folders,
                             std::span<const std::string> gone, std::vector<placed_sound> displaced) {
    // Decodes information for a few candidate files only.
    std::unordered_set<std::uint64_t> left_marks, come_marks;
    const std::unordered_set<std::string_view> gone_paths(gone.begin(), gone.end());
    for (const auto& path : gone) left_marks.insert(files.at(path).sound.value_or(0));
    for (const auto& sound : displaced) left_marks.insert(sound.mark);
    left_marks.erase(0);
    if (left_marks.empty()) return {};

    std::vector<placed_sound> come;
    for (const auto& [path, file] : files) {
        if (file.arrived == 0 || !left_marks.contains(file.sound.value_or(0)) || gone_paths.contains(path)) continue;
        come.push_back(sound_at(path, file, file.arrived));
        come_marks.insert(come.back().mark);
    }
    auto left = std::move(displaced);
    for (const auto& path : gone)
        if (const auto& file = files.at(path); come_marks.contains(file.sound.value_or(0)))
            left.push_back(sound_at(path, file, scan_of(folders, file.folder)));

    auto [sure, unclear] = find_moves(left, come);
    moved_files result{{}, {}, std::move(unclear)};
    for (const auto& [from, to] : sure) {
        const auto& tracks = files.find(to->path)->second.tracks;
        for (std::size_t i = 0; i < tracks.size(); ++i)
            result.edits.push_back({tracks[i], from->tracks[i].info, to->tracks[i].info,
                                    playable_location{from->path, from->tracks[i].subsong}});
        result.paths.insert({from->path, to->path});
    }
    return result;
}

}  // namespace ostrevan::library
