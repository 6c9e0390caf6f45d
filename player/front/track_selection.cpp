#include "player/front/track_selection.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <filesystem>
#include <stdexcept>

#include "player/library/read_files.h"
#include "player/query/sort.h"
#include "player/tags/reader.h"

namespace ostrevan::front {
namespace {

query::query_clock clock_now() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return query::query_clock::at(text);
}

std::string absolute(const std::string& path) {
    if (path.find("://") != std::string::npos) return path;
    auto normal = std::filesystem::absolute(path).lexically_normal();
    if (!normal.has_filename()) normal = normal.parent_path();
    return normal.string();
}

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

/// A file that the library does not hold: read from the disk, and known to the player until it ends.
std::vector<library::track_ptr> read_from_disk(session& player, const std::string& path) {
    std::vector<library::track_ptr> tracks;
    for (const auto& read : library::read_tracks({path, {}, 0}, tags::read_file).tracks) {
        tracks.push_back(player.tracks().obtain(path, read.subsong));
        tracks.back()->publish(read.info);
    }
    return tracks;
}

void append_tracks_at(session& player, const std::string& place, std::vector<metadb_handle_ptr>& out) {
    const auto named = parse_location(place);
    const auto path = absolute(named.path);
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return append_tracks_below(player, path, out);

    const auto held = items_of_file(player.library().items(), path);
    const auto tracks =
        held.empty() ? read_from_disk(player, path) : std::vector<library::track_ptr>(held.begin(), held.end());
    const bool whole_file = named.path.size() == place.size();
    for (const auto& track : tracks)
        if (whole_file || track->location().subsong == named.subsong) out.emplace_back(track);
}

}  // namespace

metadb_handle_list find_tracks(session& player, const std::string& text) {
    const auto wanted = query::parse(text);
    const auto now = clock_now();
    std::vector<metadb_handle_ptr> found;
    for (const auto& track : player.library().items())
        if (wanted.matches(titleformat::track_fields(player.fields(), *track), now)) found.emplace_back(track);

    if (!wanted.sort()) return metadb_handle_list(std::move(found));

    std::vector<query::sort_entry> entries;
    entries.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        entries.push_back(query::entry_of(*wanted.sort(), i, titleformat::track_fields(player.fields(), *found[i])));
    query::sort_naturally(entries, wanted.sort()->descending);
    metadb_handle_list sorted;
    sorted.items().reserve(found.size());
    for (const auto& entry : entries) sorted.items().push_back(found[entry.index]);
    return sorted;
}

playable_location parse_location(std::string_view text) {
    std::error_code error;
    const auto bar = text.rfind('|');
    if (bar == std::string_view::npos || std::filesystem::exists(std::filesystem::path(text), error))
        return {std::string(text), 0};
    std::uint32_t subsong = 0;
    const auto digits = text.substr(bar + 1);
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), subsong);
    if (problem != std::errc() || end != digits.data() + digits.size() || digits.empty()) return {std::string(text), 0};
    return {std::string(text.substr(0, bar)), subsong};
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
