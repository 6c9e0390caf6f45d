#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "player/app/changes.h"
#include "player/app/job_front_ends.h"
#include "player/app/known_tracks.h"
#include "player/app/library_events.h"
#include "player/app/playing.h"
#include "player/app/retags.h"
#include "player/core/component_loader.h"
#include "player/core/main_loop.h"
#include "player/core/profile_lock.h"
#include "player/core/service_registry.h"
#include "player/core/turn.h"
#include "player/index/index_store.h"
#include "player/library/media_library.h"
#include "player/library/track_table.h"
#include "player/services/crash_log_service.h"
#include "player/services/index_manager.h"
#include "player/services/player_api.h"
#include "player/services/tag_edit_news.h"
#include "player/services/tag_update_service.h"
#include "player/titleformat/track_fields.h"
#include "player/view/front_end.h"

namespace ostrevan::app {

struct session_options {
    std::string profile;
    std::string components;
    bool quiet = false;
    /// Another folder; a file in it replaces one of the same name. None when empty.
    std::string more_components{};
};

/// One run of the player on one profile, from the profile lock to the loaded components, in the order of construction.
/// Made and destroyed on the main thread, and used there by `loop.call`; one per process.
class session {
public:
    /// Opens the profile and starts the components. Throws with a message for the user, and changes nothing, when the
    /// profile cannot be used. A component that cannot be loaded is reported to the front end and left out.
    session(const session_options& options, core::profile_lock lock, view::front_end& ui);
    /// Ends the components and closes the profile.
    ~session();
    session(const session&) = delete;
    session& operator=(const session&) = delete;

    /// The folder.
    [[nodiscard]] const std::string& profile() const noexcept { return profile_; }
    /// Gives the commands of a job a front end of their own. Those of other jobs use the one of the session.
    void add_front_end(const core::job_ptr& job, std::shared_ptr<view::front_end> ui) { ui_.add(job, std::move(ui)); }
    void remove_front_end(const core::job_ptr& job) { ui_.remove(job); }
    /// Runs the loop until nothing is left to do: no posted work, command, worker, tag update or open question.
    void run_until_idle() { loop.run_until_idle(); }
    /// Waits until all statistics are on disk; throws when they cannot be saved. [any-thread]
    void save() { records_.flush(); }
    /// The records of all components, with their journal.
    [[nodiscard]] index::index_store& records() noexcept { return records_; }
    /// Throws when the profile is read-only: statistics could not follow an edit of tags.
    void require_writable() const;
    /// Marks the records of all tracks of the library as seen now. [any-thread]
    void mark_library_seen();
    /// The records that `index_manager_impl::drop` may remove at the user's request. [any-thread]
    [[nodiscard]] std::vector<services::index_manager_impl::old_records> old_records();
    /// For long work of the library on another thread.
    [[nodiscard]] library::main_thread_runner on_main() {
        return [this](const std::function<void()>& work) { loop.call([&] { work(); }); };
    }
    /// Every index that ever held a record.
    [[nodiscard]] std::vector<nuv::guid> stored_indexes() const { return records_.indexes(); }

private:
    [[nodiscard]] std::string file(const char* name) const { return profile_ + "/" + name; }
    void report(const std::string& message);
    /// Reports a failure. [any-thread]
    void report_later(const std::string& message);
    /// [worker]
    void publish_rewritten(const std::vector<services::tag_rewrite>& files);
    const std::string profile_;
    const core::profile_lock lock_;

public:
    core::main_loop loop;

private:
    job_front_ends ui_;

public:
    core::service_registry services;

private:
    services::crash_log_service_impl& crash_log_;
    services::player_api_impl player_;
    const player_interface interface_;
    index::index_store records_;

public:
    app::changes changes;
    services::index_manager_impl& index;

private:
    services::tag_edit_news news_;

public:
    known_tracks known;
    retag_log retags;

private:
    library_events events_;

public:
    library::track_table tracks;
    library::media_library library;
    titleformat::component_fields fields;
    std::vector<core::loaded_component> components;
    listen_log listens;
    std::atomic<bool> is_watching = false;  ///< what other players play is being counted
    app::playing playing;
    /// To change the folders of the library or to scan them.
    core::turn library_turn;
    /// To edit the queue or to begin to play.
    core::turn queue_turn;

private:
    void offer_services();
    void load_library();
};

}  // namespace ostrevan::app
