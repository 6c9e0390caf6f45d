#include "player/front/session.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <stdexcept>

#include "ostrevan/startup.h"
#include "player/core/configuration_file.h"
#include "player/core/failure_text.h"
#include "player/core/filesystems.h"
#include "player/core/hash_service_impl.h"
#include "player/core/host.h"
#include "player/core/lasting_service.h"
#include "player/core/profile_folder.h"
#include "player/core/profile_lock.h"
#include "player/core/text_helper_impl.h"
#include "player/core/thread_services.h"
#include "player/front/clipboard_file.h"
#include "player/front/component_start.h"
#include "player/front/dialog_services.h"
#include "player/front/library_search.h"
#include "player/front/library_services.h"
#include "player/front/popup_service.h"
#include "player/front/progress_display.h"
#include "player/front/tag_updates.h"
#include "player/front/track_services.h"
#include "player/tags/reader.h"
#include "player/titleformat/titleformat_service_impl.h"

namespace ostrevan::front {
namespace {

constexpr auto lock_patience = std::chrono::milliseconds(2000);

}  // namespace

/// In the order in which they are made; destroyed in the opposite one.
struct session::parts {
    parts(const session_options& options, front_end& screen)
        : ui(screen),
          lock(prepare_profile(options.profile), lock_patience),
          profile(options.profile),
          quiet(options.quiet) {}

    std::string file(const char* name) const { return profile + "/" + name; }
    void report(const std::string& message) {
        ui.note_failure();
        ui.print_line(message);
    }
    void publish_rewritten(const std::vector<tag_rewrite>& files);
    std::vector<metadb_handle_ptr> library_handles() const { return {library.items().begin(), library.items().end()}; }

    front_end& ui;
    const profile_lock lock;
    const std::string profile;
    const bool quiet;

    main_loop loop{[this](const char* what) { report(what); }};
    /// For failures of components, on any thread.
    void report_component(const std::string& message) {
        if (loop.on_main_thread()) report(message);
        else loop.post([this, message] { report(message); });
    }

    service_registry services{[this](const std::string& message) { report_component(message); }};
    lasting_service<crash_log_impl> crash_log{file("crash.log")};
    lasting_service<console_impl> console{[this](const std::string& line) { ui.print_line(line); }};
    host player{loop, services, crash_log, profile, quiet};
    const player_interface block = player.interface_block();

    lasting_service<md5_service> hash;  // before the index, which keeps key functions that use it
    lasting_service<text_helper_impl> text;
    lasting_service<configuration_file> configuration{file("configuration.json")};
    index_store records{file("index.sqlite"),
                        [this](const std::string& message) { loop.post([this, message] { report(message); }); },
                        {.daily_copies = true}};
    lasting_service<index_service> index{records, [](const service_base& service) { return module_of(typeid(service)); },
                                         index_service::redraw{}};

    tag_edit_news news{loop, services};
    library_events events{news, services, index};
    library::track_table tracks;
    library::media_library library{file("library.sqlite"), tracks, tags::read_audio, events};
    lasting_service<library_manager_impl> library_service{library};

    titleformat::component_fields fields{[this](const field_provider& provider, const std::string& doing) {
        services.guard().report(typeid(provider), doing);
    }};
    lasting_service<titleformat::titleformat_service_impl> titleformat{fields};
    lasting_service<main_thread_service_impl> main_thread{loop};
    lasting_service<thread_service_impl> threads{loop};
    lasting_service<local_filesystem> local_files{[this](const std::string& line) { ui.print_line(line); }};
    lasting_service<network_filesystem> network_files;
    lasting_service<message_service> messages{loop, ui};
    lasting_service<beep_service_impl> beep{ui};
    lasting_service<clipboard_file> clipboard;
    lasting_service<tag_updates> tag_update{loop, ui, [this](const auto& files) { publish_rewritten(files); }};
    lasting_service<info_reloads> reload{loop, ui, news, library, tracks};
    lasting_service<metadb_impl> handles{tracks};
    lasting_service<playlist_manager_impl> playlists{loop, library.playlists(), tracks};
    lasting_service<input_entry_impl> decoders;
    lasting_service<library_search_impl> search{loop, ui, services, library, fields};
    lasting_service<progress_service_impl> progress{loop, ui};
    lasting_service<dialog_registry_impl> open_dialogs;
    lasting_service<dialog_service_impl> dialogs{loop, ui, open_dialogs, player};
    lasting_service<file_dialog_service_impl> file_dialogs{loop, ui};

    std::vector<loaded_component> components;
};

void session::parts::publish_rewritten(const std::vector<tag_rewrite>& files) {
    std::vector<tag_edit> edits;
    std::vector<metadb_info_ptr> cached;  // keeps what the edits point to
    std::vector<library::track_ptr> changed;
    for (const auto& file : files) {
        cached.push_back(file.track->info());
        const auto* const before = cached.back() ? &cached.back()->info() : &file.before_in_file;
        edits.push_back({file.track, before, &file.after, *before == file.before_in_file ? nullptr : &file.before_in_file});
        changed.push_back(tracks.obtain(file.track->location().path, file.track->location().subsong));
    }
    for (const auto& [path, reason] : library.refresh_tracks(changed, library::refresh_mode::always))
        report(path + ": " + reason);
    news.tell(edits);
}

session::session(const session_options& options, front_end& ui) : parts_(std::make_unique<parts>(options, ui)) {
    auto& p = *parts_;
    auto& services = p.services;
    services.add<configuration_store>(p.configuration);
    services.add<crash_log_service>(p.crash_log);
    services.add<console_service>(p.console);
    services.add<index_manager>(p.index);
    services.add<library_manager>(p.library_service);
    services.add<titleformat_service>(p.titleformat);
    services.add<main_thread_callback_service>(p.main_thread);
    services.add<thread_service>(p.threads);
    services.add<hash_service>(p.hash);
    services.add<text_helper_service>(p.text);
    services.add<filesystem>(p.local_files);
    services.add<filesystem>(p.network_files);
    services.add<popup_message>(p.messages);
    services.add<beep_service>(p.beep);
    services.add<clipboard_service>(p.clipboard);
    services.add<tag_update_service>(p.tag_update);
    services.add<info_reload_service>(p.reload);
    services.add<metadb>(p.handles);
    services.add<playlist_manager>(p.playlists);
    services.add<input_entry>(p.decoders);
    services.add<library_search>(p.search);
    services.add<progress_service>(p.progress);
    services.add<dialog_registry>(p.open_dialogs);
    services.add<dialog_service>(p.dialogs);
    services.add<file_dialog_service>(p.file_dialogs);

    const auto report = [&p](const std::string& message) { p.report(message); };
    if (p.records.is_read_only()) ui.print_line(p.records.refusal());
    p.components = load_components(options.components, p.block, report);
    register_components(p.components, services, p.fields);
    check_installations(p.components, report);
    start_components(p.components, services, report);
    // What the process before was killed at. That they are told of some a second time changes nothing.
    p.news.tell(p.library.unfinished_edits());
}

session::~session() {
    auto& p = *parts_;
    try {
        p.loop.run_until_idle();
        p.player.begin_shutdown();
        end_components(p.components, p.services, [&p](const std::string& message) { p.report(message); });
        p.records.flush();
        bool all_followed = p.news.all_told() && !p.records.is_read_only();  // nothing can have followed then
        p.services.for_each<tag_edit_callback>([&](tag_edit_callback& callback) {
            if (const auto outcome = query_service<tag_edit_outcome>(callback)) all_followed &= outcome->all_followed();
        });
        if (all_followed) p.library.forget_edits();
    } catch (const std::exception& error) {
        p.report(failure_text(error));
    }
}

main_loop& session::loop() noexcept { return parts_->loop; }
const service_registry& session::services() const noexcept { return parts_->services; }
library::media_library& session::library() noexcept { return parts_->library; }
library::track_table& session::tracks() noexcept { return parts_->tracks; }
index_service& session::index() noexcept { return parts_->index; }
const titleformat::component_fields& session::fields() const noexcept { return parts_->fields; }
const std::vector<loaded_component>& session::components() const noexcept { return parts_->components; }
std::vector<nuv::guid> session::stored_indexes() const { return parts_->records.indexes(); }

void session::run_until_idle() { parts_->loop.run_until_idle(); }
void session::save() { parts_->records.flush(); }

void session::require_writable() const {
    if (parts_->records.is_read_only()) throw std::runtime_error("The profile can only be read, and so no file is edited.");
}

void session::mark_library_seen() {
    parts_->index->mark_seen(nuv::list_view_t<metadb_handle_ptr>(parts_->library_handles()), std::time(nullptr));
}

std::vector<index_service::old_records> session::old_records() const {
    return parts_->index->find_old(nuv::list_view_t<metadb_handle_ptr>(parts_->library_handles()), std::time(nullptr));
}

}  // namespace ostrevan::front
