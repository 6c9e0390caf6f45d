#include "player/terminal/playlist_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "player/app/play_start.h"
#include "player/app/track_selection.h"
#include "player/library/locations.h"
#include "player/library/m3u.h"
#include "player/terminal/written_file.h"

namespace ostrevan::terminal {
namespace {

constexpr std::uintmax_t largest_file = 64U << 20U;

std::string text_of_file(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw std::runtime_error(path + " does not exist.");
    if (!std::filesystem::is_regular_file(status)) throw std::runtime_error(path + " is not a regular file.");
    if (std::filesystem::file_size(path, error) > largest_file)
        throw std::runtime_error(path + " is larger than 64 MB, and surely no playlist.");
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw std::runtime_error(path + " cannot be read.");
    return text;
}

/// A folder would stand for everything below it, and a pipe or a device would never end.
bool is_file(const std::string& place) {
    std::error_code error;
    return std::filesystem::is_regular_file(library::parse_location(place).path, error);
}

library::m3u_contents contents_of(const std::string& path) {
    const auto text = text_of_file(path);
    try {
        return library::parse_m3u(text, std::filesystem::absolute(path).parent_path().string());
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": " + error.what() + ".");
    }
}

void report(run_context& context, const std::string& path, const std::vector<std::string>& problems) {
    constexpr std::size_t most = 10;
    for (std::size_t i = 0; i < std::min(most, problems.size()); ++i) context.screen.error(path + ": " + problems[i]);
    if (problems.size() > most)
        context.screen.error(path + ": " + std::to_string(problems.size() - most) + " more lines are left out.");
}

}  // namespace

std::vector<playable_location> read_playlist_file(run_context& context, const std::string& path) {
    auto [places, problems] = contents_of(path);
    for (auto& place : places) {
        auto with_slashes = place;  // as a list from Windows needs
        std::ranges::replace(with_slashes, '\\', '/');
        with_slashes = library::normal_path(with_slashes);
        if (!is_file(place) && is_file(with_slashes)) place = with_slashes;
        if (!is_file(place)) problems.push_back("There is no file " + place + ".");
    }
    std::erase_if(places, [](const std::string& place) { return !is_file(place); });
    auto chosen = app::tracks_at(context.player, places);
    for (const auto& other : chosen.no_audio) problems.push_back(other + " is no audio file.");
    std::ranges::move(chosen.problems, std::back_inserter(problems));
    report(context, path, problems);
    if (chosen.tracks.empty()) throw std::runtime_error(path + " lists no track that can be played.");
    std::vector<playable_location> entries;
    for (const auto& track : chosen.tracks) entries.push_back(track->location());
    return entries;
}

bool write_playlist_file(run_context& context, const std::vector<playable_location>& entries, const std::string& path) {
    const auto title = titleformat::compile("[%artist% - ]%title%");
    std::vector<library::m3u_entry> lines;
    for (const auto& track : app::tracks_of_entries(context.player, entries)) {
        const auto info = track->info();
        lines.push_back({track->location().path, track->location().subsong, info ? info->info().length() : 0,
                         title.run(titleformat::track_fields(context.player.fields, *track)).text});
    }
    return write_asking(context, path, library::m3u_text(lines), "Playlist");
}

}  // namespace ostrevan::terminal
