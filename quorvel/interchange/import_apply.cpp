#include "quorvel/interchange/import_apply.h"

#include <unordered_set>

#include "ostrevan/core_api.h"
#include "ostrevan/library.h"
#include "ostrevan/metadb.h"
#include "ostrevan/playlist.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// Each track once, in the order of the library and then of the playlists, so that the outcome does not depend on chance
/// where two of them share a key.
ostrevan::metadb_handle_list known_tracks() {
    ostrevan::metadb_handle_list tracks;
    ostrevan::get_service<ostrevan::library_manager>()->get_all_items(tracks);
    ostrevan::metadb_handle_list in_playlists;
    ostrevan::get_service<ostrevan::playlist_manager>()->get_all_items(in_playlists);

    std::unordered_set<const ostrevan::metadb_handle*> seen;
    for (const auto& track : tracks.items()) seen.insert(track.get());
    for (const auto& track : in_playlists.items())
        if (seen.insert(track.get()).second) tracks.items().push_back(track);
    return tracks;
}

}  // namespace

void apply_old_edits(ParseGlobals& globals) {
    if (globals.old_edits.empty()) return;
    const auto tracks = known_tracks();
    for (const auto& [mapping, edits] : globals.old_edits) {
        const auto old_mapping = FindMapping(mapping);
        std::size_t done = 0;
        for (const auto& track : tracks.items()) {
            globals.progress.step(++done, tracks.items().size());
            const auto snapshot = track->info();
            if (!snapshot) continue;
            const auto edit = edits.find(old_mapping->key_of(snapshot->info(), track->location()));
            if (edit == edits.end()) continue;
            if (const auto key = KeyOf(snapshot->info(), track->location())) globals.apply(*key, edit->second);
        }
    }
}

void pcdb_export::resolveNoInfo(ParseGlobals& globals) { ReadKeysInFiles(globals.gathered, globals.progress); }

void apply_pending_items(ParseGlobals& globals) {
    if (globals.pending.empty()) return;
    const auto metadb = ostrevan::get_service<ostrevan::metadb>();
    for (const auto& item : globals.pending)
        globals.gathered.push_back({metadb->handle_create(item.location), std::nullopt});
    pcdb_export::resolveNoInfo(globals);
    for (std::size_t i = 0; i < globals.pending.size(); ++i) {
        globals.progress.step(i + 1, globals.pending.size());
        const auto& [track, key_from_file] = globals.gathered[i];
        const auto key = key_from_file ? key_from_file : KeyOfOnce(*track);
        if (key) globals.apply(*key, globals.pending[i].stats);
    }
}

}  // namespace quorvel
