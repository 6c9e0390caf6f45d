#include "player/services/info_reload_service.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include "player/system/counted.h"

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

void info_reload_service_impl::reload_async(metadb_handle_list_cref tracks, unsigned mode, void* /*parent_window*/,
                                            unsigned /*options*/, completion_notify_ptr notify) {
    core::check_main_thread("reload_async");
    constexpr library::refresh_mode modes[] = {library::refresh_mode::unknown_only, library::refresh_mode::if_changed,
                                               library::refresh_mode::always};
    loop_.start_thread([this, tracks = metadb_handle_list(tracks), wanted = modes[std::min(mode, mode_force)],
                        notify = std::move(notify)]() mutable {
        auto result = reload(own_tracks(tracks_, tracks), wanted);
        loop_.post([this, result = std::move(result), notify = std::move(notify)] { finish(result, notify); });
    });
}

info_reload_service_impl::outcome info_reload_service_impl::reload(std::span<const library::track_ptr> tracks,
                                                                   library::refresh_mode mode) {
    constexpr std::size_t portion = 64;
    outcome result{.total = tracks.size()};
    while (result.done < result.total && !core::is_stopping()) {
        const auto now = tracks.subspan(result.done, std::min(portion, result.total - result.done));
        std::vector<metadb_info_ptr> before;
        for (const auto& track : now) before.push_back(track->info());
        auto problems = library_.refresh_tracks(now, mode, [this](const auto& work) { loop_.call([&] { work(); }); });
        std::ranges::move(problems, std::back_inserter(result.problems));
        result.done += now.size();
        loop_.call([&] {
            news_.tell(edits_between(now, before));
            ui_.show_progress("files read", result.done, result.total);
        });
    }
    return result;
}

void info_reload_service_impl::finish(const outcome& result, const completion_notify_ptr& notify) {
    ui_.end_progress();
    for (const auto& [path, reason] : result.problems) ui_.print_line(path + ": " + reason);
    if (!result.problems.empty()) {
        ui_.note_failure();
        ui_.print_line(std::to_string(result.problems.size()) + " of " + system::counted(result.total, "track") +
                       " could not be read, so the command ended there; leave out what cannot be read and run it again.");
    }
    const bool aborted = result.done < result.total;
    if (aborted) ui_.print_line("Interrupted: the tags of some tracks were not read, and the command ended there.");
    if (!notify) return;
    const auto status = aborted                   ? completion_notify::status_aborted
                        : result.problems.empty() ? completion_notify::status_success
                                                  : completion_notify::status_failed;
    core::call_component(*notify, [&] { notify->on_completion(status); });
}

}  // namespace ostrevan::services
