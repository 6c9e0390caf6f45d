#include "player/app/known_tracks.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "player/library/track.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::app {
namespace {

using registration = services::index_manager_impl::registration;

index::known_track described(const registration& index, std::uint64_t key, metadb_handle& track) {
    auto name = name_of(track);
    return {.index = index.index,
            .key = key,
            .artist = std::move(name.artist),
            .album = std::move(name.album),
            .title = std::move(name.title),
            .path = track.location().path,
            .subsong = track.location().subsong};
}

/// The track as it was.
library::track_ptr with_info(const playable_location& location, const file_info& info) {
    auto track = service_new<library::track>(location);
    track->publish(library::make_snapshot(info));
    return track;
}

}  // namespace

history::track_name name_of(metadb_handle& track) {
    static const titleformat::component_fields none;
    const titleformat::track_fields fields(none, track);
    history::track_name name;
    fields.field("artist", name.artist);
    fields.field("album", name.album);
    fields.field("title", name.title);
    return name;
}

void known_tracks::note(std::span<const metadb_handle_ptr> tracks) {
    std::vector<index::known_track> found;
    for (const auto& index : index_.registrations())
        for (const auto& track : tracks)
            if (const auto key = services::index_manager_impl::key_of(index, *track))
                found.push_back(described(index, *key, *track));
    records_.note(std::move(found));
}

void known_tracks::note_later(metadb_handle_list tracks) {
    if (!tracks.empty()) note_from(std::make_shared<const metadb_handle_list>(std::move(tracks)), 0);
}

void known_tracks::note_from(const std::shared_ptr<const metadb_handle_list>& tracks, std::size_t first) {
    constexpr std::size_t portion = 1024;
    const auto rest = std::span(tracks->items()).subspan(first);
    note(rest.first(std::min(portion, rest.size())));
    if (rest.size() > portion) loop_.post([this, tracks, first] { note_from(tracks, first + portion); });
}

void known_tracks::note_edits(std::span<const tag_edit> edits) {
    if (records_.is_read_only()) return;
    std::vector<index::known_track> found;
    for (const auto& index : index_.registrations())
        for (const auto& edit : edits) {
            const auto& now = edit.track->location();
            const auto& then = edit.location_before != nullptr ? *edit.location_before : now;
            const auto successor = index.client->key_of(*edit.after, now);
            for (const auto* before : {edit.before, edit.before_in_file}) {
                if (before == nullptr) continue;
                const auto former = with_info(then, *before);
                const auto key = services::index_manager_impl::key_of(index, *former);
                if (!key || *key == successor) continue;
                found.push_back(described(index, *key, *former));
                found.back().successor = successor;
            }
        }
    // Without a record nothing follows, and there will be nothing to take back.
    const auto unrecorded = std::ranges::partition(
        found, [&](const index::known_track& each) { return records_.record(each.index, each.key).has_value(); });
    records_.note({std::move_iterator(unrecorded.begin()), std::move_iterator(unrecorded.end())});
    found.erase(unrecorded.begin(), unrecorded.end());
    if (found.empty()) return;
    auto transaction = records_.begin();
    transaction.note(std::move(found));
    transaction.commit();
}

}  // namespace ostrevan::app
