#include "player/front/track_selection.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "player/front/disk_tracks.h"
#include "player/front/library_search.h"
#include "player/front/locations.h"

namespace ostrevan::front {
namespace {

/// The items of the library are in order of their paths; these are those of one file.
auto items_of_file(const std::vector<library::track_ptr>& items, const std::string& path) {
    return std::ranges::equal_range(
        items, path, {}, [](const library::track_ptr& track) -> const std::string& { return track->location().path; });
}

void append_tracks_below(session& player, const std::string& folder, std::vector<metadb_handle_ptr>& out) {
    const auto prefix = folder == "/" ? folder : folder + "/";
    const auto before = out.size();
    for (const auto& track : player.library().items())
        if (track->location().path.starts_with(prefix)) out.emplace_back(track);
    if (out.size() == before)
        throw std::runtime_error("The library holds no track below " + folder +
                                 ". Add the folder with 'ostrevan library add'.");
}

void append_tracks_at(session& player, const std::string& place, std::vector<metadb_handle_ptr>& out) {
    const auto named = parse_location(place);
    const auto path = normal_path(named.path);
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return append_tracks_below(player, path, out);

    const auto held = items_of_file(player.library().items(), path);
    const auto tracks =
        held.empty() ? tracks_on_disk(player.tracks(), path) : std::vector<library::track_ptr>(held.begin(), held.end());
    const bool whole_file = named.path.size() == place.size();
    for (const auto& track : tracks)
        if (whole_file || track->location().subsong == named.subsong) out.emplace_back(track);
}

}  // namespace

metadb_handle_list find_tracks(session& player, const std::string& query) {
    return find_tracks(player.library(), player.fields(), query);
}

metadb_handle_list tracks_at(session& player, const std::vector<std::string>& places) {
    metadb_handle_list out;
    for (const auto& place : places) {
        const auto before = out.get_count();
        append_tracks_at(player, place, out.items());
        if (out.get_count() == before) throw std::runtime_error(place + " has no such part.");
    }
    return out;
}

}  // namespace ostrevan::front
