#include "player/front/library_services.h"

#include <algorithm>
#include <ctime>
#include <span>

#include "ostrevan/tag_edit.h"
#include "player/front/interrupt.h"

namespace ostrevan::front {
namespace {

metadb_handle_list handles_of(const std::vector<library::track_ptr>& tracks) {
    return metadb_handle_list(std::vector<metadb_handle_ptr>(tracks.begin(), tracks.end()));
}

}  // namespace

std::vector<library::track_ptr> own_tracks(library::track_table& tracks, metadb_handle_list_cref handles) {
    std::vector<library::track_ptr> own;
    own.reserve(handles.get_count());
    for (const auto& handle : handles) own.push_back(tracks.obtain(handle->location().path, handle->location().subsong));
    return own;
}

void library_manager_impl::get_all_items(metadb_handle_list& out) const { out = handles_of(library_.items()); }

void library_events::on_library_changed(const library::library_changes& changes) {
    if (!changes.edited.empty()) {
        std::vector<tag_edit> edits;
        for (const auto& [track, before, after] : changes.edited)
            edits.push_back({metadb_handle_ptr(track), &before->info(), &after->info(), nullptr});
        services_.for_each<tag_edit_callback>(
            [&](tag_edit_callback& callback) { callback.on_tags_edited(nuv::list_view_t<tag_edit>(edits)); });
    }
    const auto added = handles_of(changes.added);
    const auto removed = handles_of(changes.removed);
    const auto modified = handles_of(changes.modified);
    index_.mark_seen(removed, std::time(nullptr));
    services_.for_each<library_callback>([&](library_callback& callback) {
        if (!added.empty()) callback.on_items_added(added);
        if (!removed.empty()) callback.on_items_removed(removed);
        if (!modified.empty()) callback.on_items_modified(modified);
    });
}

struct info_reloads::job {
    std::vector<library::track_ptr> tracks;
    library::refresh_mode mode;
    completion_notify_ptr notify;
    std::size_t done = 0;
    std::vector<library::file_problem> problems{};
};

void info_reloads::reload_async(metadb_handle_list_cref tracks, unsigned mode, void* /*parent_window*/, unsigned /*options*/,
                                completion_notify_ptr notify) {
    check_main_thread(loop_, "reload_async");
    constexpr library::refresh_mode modes[] = {library::refresh_mode::unknown_only, library::refresh_mode::if_changed,
                                               library::refresh_mode::always};
    auto work = std::make_shared<job>(
        job{.tracks = own_tracks(tracks_, tracks), .mode = modes[std::min(mode, mode_force)], .notify = std::move(notify)});
    loop_.post([this, work] { step(work); });
}

void info_reloads::step(const std::shared_ptr<job>& work) {
    constexpr std::size_t portion = 64;
    if (work->done == work->tracks.size() || interrupted()) return finish(*work);

    const auto rest = std::span(work->tracks).subspan(work->done);
    const auto now = rest.first(std::min(portion, rest.size()));
    auto problems = library_.refresh_tracks(now, work->mode);
    work->problems.insert(work->problems.end(), problems.begin(), problems.end());
    work->done += now.size();
    ui_.show_progress("files read", work->done, work->tracks.size());
    loop_.post([this, work] { step(work); });
}

void info_reloads::finish(const job& done) {
    ui_.end_progress();
    for (const auto& [path, reason] : done.problems) ui_.print_line(path + ": " + reason);
    if (!done.problems.empty()) ui_.note_failure();
    if (!done.notify) return;
    done.notify->on_completion(done.done < done.tracks.size() ? completion_notify::status_aborted
                               : done.problems.empty()        ? completion_notify::status_success
                                                              : completion_notify::status_failed);
}

}  // namespace ostrevan::front
