#include "player/app/session.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <span>
#include <stdexcept>
#include <utility>

#include "player/app/component_start.h"
#include "player/app/loading_keys.h"
#include "player/core/cause.h"
#include "player/core/offer.h"
#include "player/services/beep_service.h"
#include "player/services/clipboard_service.h"
#include "player/services/configuration_store.h"
#include "player/services/console_service.h"
#include "player/services/dialog_registry.h"
#include "player/services/dialog_service.h"
#include "player/services/file_dialog_service.h"
#include "player/services/filesystem.h"
#include "player/services/hash_service.h"
#include "player/services/info_reload_service.h"
#include "player/services/input_entry.h"
#include "player/services/library_manager.h"
#include "player/services/library_search.h"
#include "player/services/main_thread_callback_service.h"
#include "player/services/metadb.h"
#include "player/services/playlist_manager.h"
#include "player/services/popup_message.h"
#include "player/services/progress_service.h"
#include "player/services/skip_count_field.h"
#include "player/services/text_helper_service.h"
#include "player/services/thread_service.h"
#include "player/services/titleformat_service.h"
#include "player/services/work_origin_service.h"
#include "player/system/failure_text.h"
#include "player/tags/reader.h"

namespace ostrevan::app {
namespace {

/// For the journal of changes.
index::change_cause current_cause() {
    const auto& why = core::cause_scope::current();
    return why ? index::change_cause{.text = why->text, .act = why->number} : index::change_cause{};
}

}  // namespace

session::session(const session_options& options, core::profile_lock lock, view::front_end& ui)
    : profile_(options.profile),
      lock_(std::move(lock)),
      loop([this](const char* what) { report(what); }),
      ui_(loop, ui),
      services([this](const std::string& message) { report_later(message); }),
      crash_log_(core::offer<services::crash_log_service_impl>(services, file("crash.log"))),
      player_(loop, services, crash_log_, profile_, options.quiet),
      interface_(player_.interface_block()),
      records_(file("index.sqlite"), [this](const std::string& message) { loop.post([this, message] { report(message); }); },
               {.daily_copies = true, .cause = current_cause}),
      index(core::offer<services::index_manager_impl>(
          services, records_, [](const service_base& service) { return core::module_of(typeid(service)); },
          [this](const nuv::guid&, const std::vector<std::uint64_t>&) {
              changes.tell(&change_watcher::on_values_changed);
          })),
      news_(loop, services,
            [this](std::span<const tag_edit> edits) {
                known.note_edits(edits);
                retags.add(merges_of(edits, records_, index));
            }),
      known(loop, records_, index),
      events_(loop, news_, services, index, known, changes, [this](const std::string& message) { report_later(message); }),
      library(file("library.sqlite"), tracks, tags::read_audio, events_),
      fields([this](const field_provider& provider, const std::string& doing) {
          services.guard().report(typeid(provider), doing);
      }),
      listens(records_, index, known),
      playing(loop, services, library.queue(), listens, [this] { save(); }) {
    const core::cause_scope why("start");
    offer_services();
    const auto report_now = [this](const std::string& message) { report(message); };
    if (records_.is_read_only()) ui_.print_line(records_.refusal());
    components = core::load_components(options.components, options.more_components, interface_, report_now);
    register_components(components, services, fields);
    check_installations(components, report_now);
    start_components(components, services, report_now, [this] { load_library(); });
    // Edits an earlier process was killed at. Reporting some of them twice does no harm.
    news_.tell(library.unfinished_edits());
}

/// After the early stages, in which components register their indexes: the keys of all tracks are computed as they are read.
void session::load_library() {
    loading_keys keys(index);
    library.load(keys.maker());
}

/// Services that the player itself does not use. Several of one class are asked in this order.
void session::offer_services() {
    const auto print_line = [this](const std::string& line) { ui_.print_line(line); };
    core::offer<services::configuration_store_impl>(services, file("configuration.json"));
    core::offer<services::console_service_impl>(services, print_line);
    core::offer<services::library_manager_impl>(services, library);
    core::offer<services::titleformat_service_impl>(services, fields);
    core::offer<services::main_thread_callback_service_impl>(services, loop);
    core::offer<services::thread_service_impl>(services, loop);
    core::offer<services::work_origin_service_impl>(services, loop);
    core::offer<services::hash_service_impl>(services);
    core::offer<services::text_helper_service_impl>(services);
    core::offer<services::local_filesystem_impl>(services, print_line);
    core::offer<services::network_filesystem_impl>(services);
    core::offer<services::popup_message_impl>(services, loop, ui_);
    core::offer<services::beep_service_impl>(services, ui_);
    core::offer<services::clipboard_service_impl>(services);
    core::offer<services::tag_update_service_impl>(services, loop, ui_,
                                                   [this](const auto& files) { publish_rewritten(files); });
    core::offer<services::info_reload_service_impl>(services, loop, ui_, news_, library, tracks);
    core::offer<services::metadb_impl>(services, tracks);
    core::offer<services::playlist_manager_impl>(services, library.playlists(), tracks);
    core::offer<services::input_entry_impl>(services);
    core::offer<services::library_search_impl>(services, loop, ui_, services, library, fields);
    core::offer<services::skip_count_field_impl>(services, [this](const auto& track) { return listens.skips_of(track); });
    core::offer<services::progress_service_impl>(services, ui_);
    auto& open_dialogs = core::offer<services::dialog_registry_impl>(services);
    core::offer<services::dialog_service_impl>(services, loop, ui_, open_dialogs, player_);
    core::offer<services::file_dialog_service_impl>(services, ui_);
}

session::~session() {
    try {
        run_until_idle();
        player_.begin_shutdown();
        end_components(components, services, [this](const std::string& message) { report(message); });
        save();
        bool all_followed = news_.all_told() && !records_.is_read_only();  // a read-only index takes no changes
        services.for_each<tag_edit_callback>([&](tag_edit_callback& callback) {
            if (const auto outcome = query_service<tag_edit_outcome>(callback)) all_followed &= outcome->all_followed();
        });
        if (all_followed) library.forget_edits();
        library.leave_behind();
        tracks.leave_behind();
    } catch (const std::exception& error) {
        report(system::failure_text(error));
    }
}

void session::report(const std::string& message) {
    ui_.note_failure();
    ui_.print_line(message);
}

void session::report_later(const std::string& message) {
    if (loop.on_main_thread()) report(message);
    else loop.post([this, message] { report(message); });
}

void session::publish_rewritten(const std::vector<services::tag_rewrite>& files) {
    std::vector<tag_edit> edits;
    std::vector<metadb_info_ptr> cached;  // keeps the edits' pointers valid
    std::vector<library::track_ptr> changed;
    for (const auto& file : files) {
        cached.push_back(file.track->info());
        const auto* const before = cached.back() ? &cached.back()->info() : &file.before_in_file;
        edits.push_back({file.track, before, &file.after, *before == file.before_in_file ? nullptr : &file.before_in_file});
        changed.push_back(tracks.obtain(file.track->location().path, file.track->location().subsong));
    }
    const auto problems = library.refresh_tracks(changed, library::refresh_mode::always, on_main());
    loop.call([&] {
        for (const auto& [path, reason] : problems) report(path + ": " + reason);
    });
    // Components process each edit before they return.
    constexpr std::size_t portion = 256;
    for (std::size_t first = 0; first < edits.size(); first += portion) {
        const auto now = std::span(edits).subspan(first, std::min(portion, edits.size() - first));
        loop.call([&] { news_.tell(std::vector(now.begin(), now.end())); });
    }
}

void session::require_writable() const {
    if (records_.is_read_only()) throw std::runtime_error("The profile can only be read, and so no file is edited.");
}

void session::mark_library_seen() {
    index.mark_seen(nuv::list_view_t<metadb_handle_ptr>(*library.unordered_items()), std::time(nullptr));
}

std::vector<services::index_manager_impl::old_records> session::old_records() {
    auto old = index.find_old(nuv::list_view_t<metadb_handle_ptr>(*library.unordered_items()), std::time(nullptr));
    if (!library.is_whole())
        throw std::runtime_error(
            "Some tracks of the library cannot be read, and so no record counts as that of a removed one.");
    return old;
}

}  // namespace ostrevan::app
