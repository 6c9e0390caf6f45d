#include "player/services/info_reload_service.h"

#include <algorithm>
#include <span>

namespace ostrevan::services {
namespace {

std::vector<library::track_ptr> own_tracks(library::track_table& tracks, metadb_handle_list_cref handles) {
    std::vector<library::track_ptr> own;
    own.reserve(handles.get_count());
    for (const auto& handle : handles) own.push_back(tracks.obtain(handle->location().path, handle->location().subsong));
    return own;
}

/// Edits of other programs must be found here: the next scan only sees the tracks as they are now.
std::vector<library::track_edit> edits_between(std::span<const library::track_ptr> tracks,
                                               const std::vector<metadb_info_ptr>& before) {
    std::vector<library::track_edit> edits;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        auto after = tracks[i]->info();
        if (before[i] && after && !(before[i]->info() == after->info()) &&
            library::is_same_sound(before[i]->info(), after->info()))
            edits.push_back({tracks[i], before[i], std::move(after)});
    }
    return edits;
}

}  // namespace

struct info_reload_service_impl::job {
    std::vector<library::track_ptr> tracks;
    library::refresh_mode mode;
    completion_notify_ptr notify;
    std::size_t done = 0;
    std::vector<library::file_problem> problems{};
};

void info_reload_service_impl::reload_async(metadb_handle_list_cref tracks, unsigned mode, void* /*parent_window*/,
                                            unsigned /*options*/, completion_notify_ptr notify) {
    core::check_main_thread("reload_async");
    constexpr library::refresh_mode modes[] = {library::refresh_mode::unknown_only, library::refresh_mode::if_changed,
                                               library::refresh_mode::always};
    auto work = std::make_shared<job>(
        job{.tracks = own_tracks(tracks_, tracks), .mode = modes[std::min(mode, mode_force)], .notify = std::move(notify)});
    loop_.post([this, work] { step(work); });
}

void info_reload_service_impl::step(const std::shared_ptr<job>& work) {
    constexpr std::size_t portion = 64;
    if (work->done == work->tracks.size() || core::is_stopping()) return finish(*work);

    const auto rest = std::span(work->tracks).subspan(work->done);
    const auto now = rest.first(std::min(portion, rest.size()));
    std::vector<metadb_info_ptr> before;
    for (const auto& track : now) before.push_back(track->info());
    auto problems = library_.refresh_tracks(now, work->mode);
    news_.tell(edits_between(now, before));
    work->problems.insert(work->problems.end(), problems.begin(), problems.end());
    work->done += now.size();
    ui_.show_progress("files read", work->done, work->tracks.size());
    loop_.post([this, work] { step(work); });
}

void info_reload_service_impl::finish(const job& done) {
    ui_.end_progress();
    for (const auto& [path, reason] : done.problems) ui_.print_line(path + ": " + reason);
    if (!done.problems.empty()) {
        ui_.note_failure();
        ui_.print_line(std::to_string(done.problems.size()) + " of " + std::to_string(done.tracks.size()) +
                       " tracks could not be read, so the command ended there; leave those out and run it again.");
    }
    const bool aborted = done.done < done.tracks.size();
    if (aborted) ui_.print_line("Interrupted: the tags of some tracks were not read, and the command ended there.");
    if (!done.notify) return;
    const auto status = aborted                 ? completion_notify::status_aborted
                        : done.problems.empty() ? completion_notify::status_success
                                                : completion_notify::status_failed;
    core::call_component(*done.notify, [&] { done.notify->on_completion(status); });
}

}  // namespace ostrevan::services
