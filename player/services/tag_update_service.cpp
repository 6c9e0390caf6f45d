#include "player/services/tag_update_service.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <unordered_set>

#include "player/core/component_call.h"
#include "player/library/cue_files.h"
#include "player/system/counted.h"
#include "player/tags/rewrite.h"

namespace ostrevan::services {

void tag_update_service_impl::update_async(metadb_handle_list_cref tracks, service_ptr_t<file_info_filter> filter,
                                           void* /*parent_window*/, unsigned options, completion_notify_ptr notify) {
    core::check_main_thread("update_async");
    batch fresh{.busy = core::main_loop::activity(loop_),
                .tracks = metadb_handle_list(tracks),
                .filter = std::move(filter),
                .options = options,
                .notify = std::move(notify)};

    const std::lock_guard lock(mutex_);
    waiting_.insert(place_of(fresh), std::move(fresh));
    if (is_working_) return;
    const core::job::scope nobody(nullptr);  // the worker serves every job
    std::thread([this, busy = core::main_loop::activity(loop_)] { work(); }).detach();
    is_working_ = true;
}

/// After every other batch of the user, and after background batches with a common file: the last request for a file
/// decides its content.
std::deque<tag_update_service_impl::batch>::iterator tag_update_service_impl::place_of(const batch& fresh) {
    if (fresh.is_background()) return waiting_.end();
    std::unordered_set<std::string_view> files;
    for (const auto& track : fresh.tracks) files.insert(track->location().path);
    const auto comes_first = [&](const batch& earlier) {
        return !earlier.is_background() ||
               std::any_of(earlier.tracks.begin(), earlier.tracks.end(),
                           [&](const metadb_handle_ptr& track) { return files.contains(track->location().path); });
    };
    return std::find_if(waiting_.rbegin(), waiting_.rend(), comes_first).base();
}

void tag_update_service_impl::work() {
    for (;;) {
        std::shared_ptr<batch> next;
        {
            const std::lock_guard lock(mutex_);
            if (waiting_.empty()) {
                is_working_ = false;
                return;
            }
            next = std::make_shared<batch>(std::move(waiting_.front()));
            waiting_.pop_front();
        }
        const core::main_loop::activity::scope scope(next->busy);
        rewrite_all(*next);
        publish(*next);
        loop_.post([this, next] { finish(*next); });
    }
}

void tag_update_service_impl::rewrite_all(batch& work) const {
    const auto total = work.tracks.get_count();
    for (std::size_t i = 0; i < total && !work.is_aborted; ++i) {
        work.is_aborted = core::is_stopping();
        if (work.is_aborted) break;
        if (!work.is_silent()) loop_.post([this, i, total] { ui_.show_progress("files checked and rewritten", i, total); });
        rewrite(work, work.tracks[i]);
    }
}

void tag_update_service_impl::rewrite(batch& work, const metadb_handle_ptr& track) const {
    const auto& [path, subsong] = track->location();
    try {
        if (subsong != 0 || library::is_cue_path(path))
            throw std::runtime_error(path + "|" + std::to_string(subsong) +
                                     ": a part of a CUE sheet has no tags of its own. Edit the sheet, or split the file.");
        file_info before;
        auto result = tags::rewrite_file(path, [&](file_info_builder& info) {
            before = info.build();
            return core::call_component(*work.filter, [&] { return work.filter->apply_filter(track, info); });
        });
        for (const auto& note : result.notes) work.notes.push_back(path + ": " + note);
        if (result.outcome == tags::rewrite_outcome::rewritten)
            work.rewritten.push_back({track, std::move(before), result.info.build()});
    } catch (const std::exception& error) {
        work.problems.emplace_back(error.what());
    }
}

void tag_update_service_impl::publish(const batch& done) const {
    if (done.rewritten.empty()) return;
    try {
        on_rewritten_(done.rewritten);
    } catch (...) {
        loop_.post([failure = std::current_exception()] { std::rethrow_exception(failure); });
    }
}

void tag_update_service_impl::finish(const batch& done) const {
    if (!done.is_silent()) ui_.end_progress();
    for (const auto& note : done.notes) ui_.print_line(note);
    for (const auto& problem : done.problems) ui_.print_line(problem);
    if (!done.problems.empty() && !done.is_silent()) {
        ui_.note_failure();
        ui_.print_line(std::to_string(done.problems.size()) + " of " + system::counted(done.tracks.get_count(), "file") +
                       " could not be updated and " + (done.problems.size() == 1 ? "is as it was." : "are as they were."));
    }
    if (done.is_aborted)
        ui_.print_line("Interrupted: " + system::counted(done.rewritten.size(), "file") +
                       (done.rewritten.size() == 1 ? " was" : " were") + " rewritten, the rest are as they were.");
    if (!done.notify) return;
    const bool failed = !done.problems.empty();
    const auto status = done.is_aborted ? completion_notify::status_aborted
                        : failed        ? completion_notify::status_failed
                                        : completion_notify::status_success;
    core::call_component(*done.notify, [&] { done.notify->on_completion(status); });
}

}  // namespace ostrevan::services
