#include "player/app/listening_summary.h"

#include <vector>

#include "player/app/track_selection.h"

namespace ostrevan::app {

summary::figures listening_summary(session& player, const std::optional<std::string>& query,
                                   const summary::question& wanted) {
    using services::index_manager_impl;
    const auto tracks = query ? find_tracks(player, *query).items() : *player.library.unordered_items();
    // Each listen is noted with the key of its track in every index; the first one tells the tracks apart.
    const auto indexes = player.index.registrations();
    const auto key_of = [&](const metadb_handle& track) {
        return indexes.empty() ? std::nullopt : index_manager_impl::key_of(indexes.front(), track);
    };
    const summary::track_set known(tracks, player.fields, key_of);
    summary::summary_maker maker(wanted, known, !query);
    auto journal = player.records().read_journal();
    const auto index = indexes.empty() ? nuv::guid{} : indexes.front().index;
    const auto followed = journal.successors_in(index);
    journal.for_each_listen(index, [&](index::brief_listen heard) {
        if (heard.key) heard.key = followed.first_of(*heard.key, [&](std::uint64_t key) { return known.has(key); });
        maker.hear(heard);
    });
    return std::move(maker).finish();
}

}  // namespace ostrevan::app
