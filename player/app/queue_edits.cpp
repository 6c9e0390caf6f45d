#include "player/app/queue_edits.h"

#include <future>
#include <stdexcept>
#include <utility>

#include "player/app/play_start.h"

namespace ostrevan::app {
namespace {

struct addition {
    metadb_handle_list tracks{};
    std::vector<playback::play_item> items{};
};

/// Returns false when nothing plays.
bool edit_playing(session& player, const addition& added, const queue_change& change) {
    const auto done = player.loop.call([&] {
        auto future =
            player.playing.edit(added.tracks, added.items, [change](playback::queue& order) { return change(order, true); });
        return future ? std::make_shared<std::future<void>>(std::move(*future)) : nullptr;
    });
    if (!done) return false;
    try {
        done->get();
    } catch (const std::future_error&) {
        return edit_playing(player, added, change);  // the playback has ended; the next one may have begun
    }
    return true;
}

void save(session& player, const metadb_handle_list& tracks, playback::queue order, double volume, double seconds) {
    kept_queue kept(player.library.queue(), [](const std::string& text) { throw std::runtime_error(text); });
    kept.begin(tracks, {std::move(order), volume}, seconds);
}

void edit_kept(session& player, const addition& added, const queue_change& change) {
    player.require_writable();
    auto kept = start_again(player);
    if (!kept && added.tracks.empty()) throw std::runtime_error("The queue is empty.");
    if (!kept) {
        const auto fresh = start_with(player, added.tracks, {});
        return save(player, fresh.tracks, fresh.order, fresh.volume, fresh.seconds);
    }
    const auto before = kept->order.current_entry();
    for (const auto& track : added.tracks) kept->tracks.items().push_back(track);
    change(kept->order, false);
    if (kept->order.size() == 0) return player.library.queue().clear();
    const bool is_same = kept->order.current_entry() == before;
    save(player, kept->tracks, kept->order, kept->volume, is_same ? kept->seconds : 0);
}

void edit(session& player, const addition& added, const queue_change& change) {
    const auto turn = player.queue_turn.take([] {});
    if (turn && !edit_playing(player, added, change)) edit_kept(player, added, change);
}

}  // namespace

std::optional<current_queue> find_queue(session& player) {
    auto playing = player.loop.call([&]() -> std::optional<current_queue> {
        const auto& now = player.playing;
        if (!now.is_under_way()) return std::nullopt;
        return current_queue{now.tracks(), now.status()->order, true};
    });
    if (playing) return playing;
    auto kept = start_again(player);
    if (!kept) return std::nullopt;
    return current_queue{std::move(kept->tracks), std::move(kept->order)};
}

void edit_queue(session& player, const queue_change& change) { edit(player, {}, change); }

void add_to_queue(session& player, const metadb_handle_list& tracks, bool is_next) {
    edit(player, {tracks, items_of(tracks)}, [traits = traits_of(player, tracks), is_next](playback::queue& order, bool) {
        order.add(traits, is_next);
        return true;
    });
}

}  // namespace ostrevan::app
