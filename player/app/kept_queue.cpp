#include "player/app/kept_queue.h"

#include <exception>
#include <random>
#include <set>
#include <utility>

#include "player/library/disk_tracks.h"
#include "player/system/local_path.h"
#include "player/titleformat/script.h"

namespace ostrevan::app {
namespace {

playback::queue make_queue(session& player, const metadb_handle_list& tracks, playback::play_modes modes) {
    // The album artist of a compilation is often missing, and its artists differ.
    const auto album = titleformat::compile("$if(%album%,%album%|%directoryname%)");
    std::vector<std::string> albums;
    for (const auto& track : tracks) albums.push_back(album.run(titleformat::track_fields(player.fields, *track)).text);
    std::random_device entropy;
    return {std::move(albums), modes, (std::uint64_t{entropy()} << 32U) + entropy()};
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

play_start start_with(session& player, metadb_handle_list tracks, playback::play_modes modes) {
    auto order = make_queue(player, tracks, modes);
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

/// A queue that cannot be kept does not keep anybody from listening.
void kept_queue::save(const std::function<void()>& work) {
    if (has_failed_ || store_.is_read_only()) return;
    try {
        work();
    } catch (const std::exception& error) {
        has_failed_ = true;
        on_failure_("The queue cannot be kept for the next start: " + std::string(error.what()));
    }
}

void kept_queue::save_state(const playback::play_status& status, double seconds) {
    const auto& order = status.order;
    saved_ = std::chrono::steady_clock::now();
    store_.save({.place = order.place(order.current()),
                 .seconds = seconds,
                 .repeat = static_cast<int>(order.modes().repeat),
                 .shuffle = static_cast<int>(order.modes().shuffle),
                 .volume = status.volume});
}

void kept_queue::begin(const play_start& start) {
    std::vector<playable_location> entries;
    for (const auto& track : start.tracks) entries.push_back(track->location());
    save([&] { store_.save(entries); });
    update({start.order, start.volume}, start.seconds);
}

void kept_queue::update(const playback::play_status& status, double seconds) {
    save([&] {
        if (auto round = status.order.round(); round != round_) store_.save(round_ = std::move(round));
        if (std::chrono::steady_clock::now() - saved_ >= std::chrono::seconds(1)) save_state(status, seconds);
    });
}

void kept_queue::end(const playback::play_status& status, double seconds) {
    update(status, seconds);
    save([&] { save_state(status, seconds); });
}

}  // namespace ostrevan::app
