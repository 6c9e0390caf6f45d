#include "player/app/library_events.h"

#include <ctime>
#include <set>
#include <utility>
#include <vector>

namespace ostrevan::app {
namespace {

metadb_handle_list handles_of(const std::vector<library::track_ptr>& tracks) {
    return metadb_handle_list(std::vector<metadb_handle_ptr>(tracks.begin(), tracks.end()));
}

/// Leaves out tracks that were moved and retagged at once: their former names are noted already, with the key that their
/// records have followed.
metadb_handle_list without_moved(const metadb_handle_list& removed, const std::vector<library::track_edit>& edits) {
    std::set<playable_location> moved;
    for (const auto& each : edits)
        if (each.location_before) moved.insert(*each.location_before);
    auto gone = removed;
    std::erase_if(gone.items(), [&](const metadb_handle_ptr& each) { return moved.contains(each->location()); });
    return gone;
}

}  // namespace

void library_events::tell(metadb_handle_list_cref tracks, void (library_callback::*event)(metadb_handle_list_cref)) {
    if (tracks.empty()) return;
    loop_.call([&] {
        services_.for_each<library_callback>([&](library_callback& callback) { (callback.*event)(tracks); },
                                             "following changes of the library");
    });
}

void library_events::on_library_changed(const library::library_changes& changes) {
    loop_.call([&, edited = changes.edited]() mutable { news_.tell(std::move(edited)); });
    const auto removed = handles_of(changes.removed);
    index_.mark_seen(removed, std::time(nullptr));
    known_.note_later(without_moved(removed, changes.edited));
    tell(handles_of(changes.added), &library_callback::on_items_added);
    tell(removed, &library_callback::on_items_removed);
    tell(handles_of(changes.modified), &library_callback::on_items_modified);
    loop_.call([&] { changes_.tell(&change_watcher::on_library_changed); });
}

}  // namespace ostrevan::app
