#include "player/app/play_start.h"

#include <algorithm>
#include <exception>
#include <random>
#include <set>
#include <utility>

#include "player/library/cue_files.h"
#include "player/library/disk_tracks.h"
#include "player/library/read_files.h"
#include "player/system/local_path.h"
#include "player/tags/reader.h"
#include "player/titleformat/integer.h"
#include "player/titleformat/script.h"

namespace ostrevan::app {
namespace {

double number_of(const titleformat::track_fields& fields, std::string_view name) {
    std::string text;
    if (!fields.field(name, text)) return 0;
    return static_cast<double>(std::max<std::int64_t>(titleformat::leading_integer(text).value_or(0), 0));
}

/// Tracks that are skipped often and played rarely tend to come later. One skip halves the weight of a track that was never
/// played, and hardly changes that of one with a hundred plays.
double weight_of(const titleformat::track_fields& fields) {
    const auto plays = number_of(fields, "play_count"), skips = number_of(fields, "skip_count");
    return (1 + plays) / (1 + plays + skips);
}

/// The database may have been changed by another program.
template <class Mode>
Mode mode_of(int number, Mode last) {
    return number >= 0 && number <= static_cast<int>(last) ? static_cast<Mode>(number) : Mode{};
}

}  // namespace

metadb_handle_list tracks_of_entries(session& player, const std::vector<playable_location>& entries) {
    std::vector<metadb_handle_ptr> result;
    std::set<std::string> tried;
    for (const auto& [path, subsong] : entries) {
        const auto track = player.tracks.obtain(path, subsong);
        result.emplace_back(track);
        if (track->has_info() || !system::is_local_path(path) || !tried.insert(path).second) continue;
        try {
            library::tracks_on_disk(player.tracks, path);
        } catch (const std::exception&) {
            continue;  // reported when it is to be played
        }
    }
    return metadb_handle_list(std::move(result));
}

std::vector<playback::shuffle_traits> traits_of(session& player, const metadb_handle_list& tracks) {
    // The album artist of a compilation is often missing, and its artists differ.
    const auto album = titleformat::compile("$if(%album%,%album%|%directoryname%)");
    std::vector<playback::shuffle_traits> traits;
    for (const auto& track : tracks) {
        const titleformat::track_fields fields(player.fields, *track);
        traits.push_back({album.run(fields).text, weight_of(fields)});
    }
    return traits;
}

std::vector<playback::play_item> items_of(const metadb_handle_list& tracks) {
    std::vector<playback::play_item> result;
    for (const auto& track : tracks) {
        const auto& [path, subsong] = track->location();
        try {
            auto part = library::resolve_playable(path, subsong, tags::read_file);
            result.push_back({std::move(part.path), subsong == 0 ? std::nullopt : std::optional(part.start), part.end});
        } catch (const std::exception& error) {
            result.push_back({.path = path, .start = {}, .end = {}, .problem = library::reason_of(error, path)});
        }
    }
    return result;
}

play_start start_with(session& player, metadb_handle_list tracks, playback::play_modes modes) {
    std::random_device entropy;
    playback::queue order(traits_of(player, tracks), modes, (std::uint64_t{entropy()} << 32U) + entropy());
    return {.tracks = std::move(tracks), .order = std::move(order)};
}

std::optional<play_start> start_again(session& player) {
    auto saved = player.library.queue().load();
    if (!saved) return std::nullopt;
    const auto& state = saved->state;
    const playback::play_modes modes{.repeat = mode_of(state.repeat, playback::repeat_mode::list),
                                     .shuffle = mode_of(state.shuffle, playback::shuffle_mode::albums)};
    auto start = start_with(player, tracks_of_entries(player, saved->entries), modes);
    if (start.order.resume(std::move(saved->round), state.place)) start.seconds = std::max(state.seconds, 0.0);
    start.volume = std::clamp(state.volume, 0.0, 100.0);
    return start;
}

}  // namespace ostrevan::app
