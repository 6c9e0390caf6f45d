#include "player/app/library_events.h"

#include <ctime>
#include <vector>

#include "ostrevan/library.h"

namespace ostrevan::app {
namespace {

metadb_handle_list handles_of(const std::vector<library::track_ptr>& tracks) {
    return metadb_handle_list(std::vector<metadb_handle_ptr>(tracks.begin(), tracks.end()));
}

}  // namespace

void library_events::on_library_changed(const library::library_changes& changes) {
    news_.tell(changes.edited);
    const auto added = handles_of(changes.added);
    const auto removed = handles_of(changes.removed);
    const auto modified = handles_of(changes.modified);
    index_.mark_seen(removed, std::time(nullptr));
    known_.note_later(removed);
    services_.for_each<library_callback>(
        [&](library_callback& callback) {
            if (!added.empty()) callback.on_items_added(added);
            if (!removed.empty()) callback.on_items_removed(removed);
            if (!modified.empty()) callback.on_items_modified(modified);
        },
        "following changes of the library");
}

}  // namespace ostrevan::app
