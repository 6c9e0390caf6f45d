#include "player/app/track_selection.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <functional>
#include <iterator>
#include <stdexcept>

#include "player/library/cue_files.h"
#include "player/library/disk_tracks.h"
#include "player/library/location_order.h"
#include "player/library/locations.h"
#include "player/tags/formats.h"
#include "player/view/find_tracks.h"
#include "player/view/track_order.h"

namespace ostrevan::app {
namespace {

/// Receives a message for everything left out.
using problem_sink = std::function<void(const std::string& message)>;

void append_tracks_below(session& player, const std::string& folder, std::vector<metadb_handle_ptr>& out,
                         const problem_sink& on_problem) {
    const auto prefix = folder == "/" ? folder : folder + "/";
    std::vector<metadb_handle_ptr> found;
    std::ranges::copy_if(*player.library.unordered_items(), std::back_inserter(found),
                         [&](const metadb_handle_ptr& track) { return track->location().path.starts_with(prefix); });
    library::sort_by_location(found);
    if (found.empty()) {
        const auto on_disk = library::folder_tracks_on_disk(player.tracks, folder, core::stop_flag());
        for (const auto& [path, reason] : on_disk.problems) on_problem(path + ": " + reason);
        found.assign(on_disk.tracks.begin(), on_disk.tracks.end());
    }
    if (found.empty()) throw std::runtime_error("There is no track below " + folder + ".");
    view::sort_for_listening(found);
    out.insert(out.end(), found.begin(), found.end());
}

void append_tracks_at(session& player, const std::string& place, std::vector<metadb_handle_ptr>& out,
                      const problem_sink& on_problem) {
    const auto named = library::parse_location(place);
    const auto path = library::normal_path(named.path);
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return append_tracks_below(player, path, out, on_problem);

    auto tracks = player.loop.call([&] {
        const auto held = player.library.items_of_file(path);
        return std::vector<library::track_ptr>(held.begin(), held.end());
    });
    if (tracks.empty()) tracks = library::tracks_on_disk(player.tracks, path);
    std::ranges::stable_sort(tracks, {}, [](const library::track_ptr& track) { return track->location().subsong; });
    const auto before = out.size();
    const bool whole_file = named.path.size() == place.size();
    for (const auto& track : tracks)
        if (whole_file || track->location().subsong == named.subsong) out.emplace_back(track);
    if (out.size() == before) throw std::runtime_error(place + " has no such part.");
}

/// Covers and booklets, which `album/*` matches as well.
bool is_no_audio(const std::string& place) {
    const auto path = library::parse_location(place).path;
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && !tags::has_supported_extension(path) &&
           !library::is_cue_path(path);
}

}  // namespace

metadb_handle_list find_tracks(session& player, const std::string& query) {
    const auto items = player.library.unordered_items();
    return view::find_tracks(*items, player.fields, view::parse_query(*items, player.fields, query));
}

selection tracks_at(session& player, const std::vector<std::string>& places) {
    selection chosen;
    const auto on_problem = [&](const std::string& message) { chosen.problems.push_back(message); };
    for (const auto& place : places) {
        if (is_no_audio(place)) {
            chosen.no_audio.push_back(place);
            continue;
        }
        try {
            append_tracks_at(player, place, chosen.tracks.items(), on_problem);
        } catch (const std::exception& error) {
            on_problem(error.what());
        }
    }
    return chosen;
}

void note_chosen(session& player, metadb_handle_list_cref tracks) {
    constexpr std::size_t few = 256;
    std::vector<metadb_handle_ptr> noted(tracks.begin(), tracks.end());
    if (noted.size() > few) {
        auto in_library = *player.library.unordered_items();
        std::ranges::sort(in_library);
        std::erase_if(noted, [&](const metadb_handle_ptr& each) { return std::ranges::binary_search(in_library, each); });
    }
    player.known.note(noted);
}

}  // namespace ostrevan::app
