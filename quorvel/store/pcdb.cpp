#include "quorvel/store/pcdb.h"

#include <algorithm>
#include <memory>

#include "ostrevan/core_api.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/tasks.h"
#include "quorvel/platform/clock.h"
#include "quorvel/store/date_added.h"
#include "quorvel/store/file_tags.h"
#include "quorvel/store/key.h"
#include "quorvel/store/sorted_keys.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {
namespace {

/// One operation over tracks, on the main thread: `edit` for the record of each that has a key. Copies of a track share a
/// record, which is edited once.
template <typename Edit>
void edit_tracks(ostrevan::metadb_handle_list_cref tracks, Edit&& edit) {
    StatsOp op;
    for (const auto key : SortedKeysOf(tracks)) op.Update(key, edit);
    op.finish();
}

std::uint32_t rating_stepped(std::uint32_t rating, int step) noexcept {
    if (rating == rating_not_set) return rating_of_stars(step < 0 ? 2 : 3);
    const std::int64_t stars = std::int64_t{stars_of(rating)} + step;
    return rating_of_stars(static_cast<std::uint32_t>(std::clamp<std::int64_t>(stars, 1, 5)));
}

}  // namespace

t_playback_stats PCDB::Get(const ostrevan::metadb_handle& track) {
    const auto key = KeyOf(track);
    return key ? GetByKey(*key) : t_playback_stats{};
}

t_playback_stats PCDB::GetByKey(std::uint64_t key) noexcept { return read_record(key); }

std::vector<std::uint64_t> PCDB::KeysFrom(std::uint64_t first, std::size_t at_most) {
    const auto* const index = opened_index();
    return index == nullptr ? std::vector<std::uint64_t>{} : index->keys_from(statistics_index_guid, first, at_most);
}

void PCDB::Update(std::uint64_t key, const Edit& edit) {
    ostrevan::core_api::ensure_main_thread();
    StatsOp op;
    op.Update(key, edit);
    op.finish();
}

bool PCDB::ItemPlayed(const ostrevan::metadb_handle& track) {
    ostrevan::core_api::ensure_main_thread();
    StatsOp op;
    const auto key = KeyOf(track);
    if (!key || !op.has_index()) return false;
    op.begin();
    auto record = op.GetByKey(*key);
    record.last_played = filetime_now();
    ++record.play_count;
    if (record.first_played == 0) record.first_played = record.last_played;
    op.SetByKey(*key, record);
    op.finish();
    return true;
}

void PCDB::Reset(ostrevan::metadb_handle_list_cref tracks) {
    ostrevan::core_api::ensure_main_thread();
    edit_tracks(tracks, [](t_playback_stats& record) { record = {.added = record.added, .trailing = record.trailing}; });
}

void PCDB::SetRating(ostrevan::metadb_handle_list_cref tracks, std::uint32_t rating) {
    ostrevan::core_api::ensure_main_thread();
    edit_tracks(tracks, [rating](t_playback_stats& record) { record.rating = rating; });
}

void PCDB::AdjustRating(ostrevan::metadb_handle_list_cref tracks, int step) {
    ostrevan::core_api::ensure_main_thread();
    edit_tracks(tracks, [step](t_playback_stats& record) { record.rating = rating_stepped(record.rating, step); });
}

void PCDB::MergeBatch(std::span<const TrackRecord> pairs, MergeType type) {
    ostrevan::core_api::ensure_main_thread();
    StatsOp op;
    for (const auto& [track, incoming] : pairs)
        if (const auto key = KeyOf(*track)) op.MergeStats(*key, incoming, type);
    op.finish();
}

void PCDB::OnAdded(ostrevan::metadb_handle_list_cref tracks) { OnAdded(ostrevan::metadb_handle_list(tracks)); }

void PCDB::OnAdded(ostrevan::metadb_handle_list&& tracks) {
    ostrevan::core_api::ensure_main_thread();
    if (tracks.empty()) return;
    auto held = std::make_shared<const ostrevan::metadb_handle_list>(std::move(tracks));
    run_on_worker("Playback statistics: dates added could not be saved",
                  [held = std::move(held)] { stamp_dates_added(*held, filetime_now()); });
}

void PCDB::ImportFromTags(ostrevan::metadb_handle_list_cref tracks) {
    ostrevan::core_api::ensure_main_thread();
    if (tracks.get_count() == 0) return;
    StatsOp op;
    for (const auto& track : tracks) {
        const auto snapshot = track->info();
        if (!snapshot) continue;
        const auto key = KeyOf(snapshot->info(), track->location());
        if (!key) continue;
        t_playback_stats tags;
        const std::uint32_t present = PCDB_read_tags(tags, snapshot->info(), true);
        op.Update(*key, [&](t_playback_stats& record) { copy_fields(record, tags, present); });
    }
    op.finish();
    print_to_console("Playback statistics: file tags have changed the statistics of " +
                     std::to_string(op.changed_keys().size()) + " of " + std::to_string(tracks.get_count()) + " tracks");
}

void PCDB::SaveNow() {
    if (auto* const index = opened_index()) index->save_now(statistics_index_guid);
}

}  // namespace quorvel
