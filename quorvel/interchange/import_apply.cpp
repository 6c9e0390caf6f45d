#include "quorvel/interchange/import_apply.h"

#include <unordered_set>

#include "ostrevan/core_api.h"
#include "ostrevan/library.h"
#include "ostrevan/metadb.h"
#include "ostrevan/playlist.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// Each track once, in the order of the library and then of the playlists. A fixed order matters where two tracks share a
/// key.
std::vector<GatheredTrack> known_tracks() {
    ostrevan::metadb_handle_list tracks;
    ostrevan::get_service<ostrevan::library_manager>()->get_all_items(tracks);
    ostrevan::metadb_handle_list in_playlists;
    ostrevan::get_service<ostrevan::playlist_manager>()->get_all_items(in_playlists);

    std::vector<GatheredTrack> known;
    std::unordered_set<const ostrevan::metadb_handle*> seen;
    for (const auto* const list : {&tracks, &in_playlists})
        for (const auto& track : list->items())
            if (seen.insert(track.get()).second) known.push_back({track});
    return known;
}

}  // namespace

void pcdb_export::resolveNoInfo(ParseGlobals& globals, std::vector<GatheredTrack>& gathered,
                                const ostrevan::index_client_ptr& older_mapping) {
    ReadKeysInFiles(gathered, globals.progress, older_mapping);
}

void apply_old_edits(ParseGlobals& globals, const std::map<nuv::guid, OldKeyEdits>& old_edits) {
    for (const auto& [mapping, edits] : old_edits) {
        if (edits.empty()) continue;
        const auto older = FindMapping(mapping);
        auto tracks = known_tracks();
        pcdb_export::resolveNoInfo(globals, tracks, older);
        std::size_t done = 0;
        for (auto& [track, key, older_key] : tracks) {
            globals.progress.step(++done, tracks.size());
            if (const auto snapshot = track->info()) {
                key = KeyOf(snapshot->info(), track->location());
                older_key = older->key_of(snapshot->info(), track->location());
            }
            if (!key || !older_key) continue;
            if (const auto edit = edits.find(*older_key); edit != edits.end()) globals.apply(*key, edit->second);
        }
    }
}

void apply_path_items(ParseGlobals& globals, const std::vector<PathItem>& items) {
    if (items.empty()) return;
    const auto metadb = ostrevan::get_service<ostrevan::metadb>();
    std::vector<GatheredTrack> tracks;
    tracks.reserve(items.size());
    for (const auto& item : items) tracks.push_back({metadb->handle_create(item.location)});
    pcdb_export::resolveNoInfo(globals, tracks);
    for (std::size_t i = 0; i < items.size(); ++i) {
        globals.progress.step(i + 1, items.size());
        const auto key = tracks[i].key ? tracks[i].key : KeyOf(*tracks[i].track);
        if (key) globals.apply(*key, items[i].stats);
    }
}

}  // namespace quorvel
