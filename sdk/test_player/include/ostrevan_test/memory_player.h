#pragma once

#include <atomic>
#include <thread>
#include <vector>

#include "ostrevan/component.h"
#include "ostrevan/core_api.h"
#include "ostrevan_test/memory_desk.h"
#include "ostrevan_test/memory_dialogs.h"
#include "ostrevan_test/memory_files.h"
#include "ostrevan_test/memory_index.h"
#include "ostrevan_test/memory_lookup.h"
#include "ostrevan_test/memory_text.h"
#include "ostrevan_test/memory_threads.h"
#include "ostrevan_test/memory_tracks.h"

namespace ostrevan_test {

/// A player in memory that makes the handshake as a real one does and offers every service of the SDK, each a member that
/// the test inspects and makes fail. The thread that makes it is the main thread. A bug check prints its text and aborts.
/// For a component that keeps services in static objects, make one that is never destroyed, and call `shut_down`.
class memory_player : public ostrevan::player_api {
public:
    /// `entry` is that of a component linked into the test, or of a library that stays loaded as long as the player lives.
    explicit memory_player(ostrevan::get_interface_function entry, const char* library_path = "/components/component.dll");
    /// Runs the shutdown notifications when the player was started.
    virtual ~memory_player();
    memory_player(const memory_player&) = delete;
    memory_player& operator=(const memory_player&) = delete;

    ostrevan::service_uncounted_t<memory_index> index;
    ostrevan::service_uncounted_t<main_thread_queue> main_queue;
    ostrevan::service_uncounted_t<task_threads> threads;
    ostrevan::service_uncounted_t<recorded_popups> popups;
    ostrevan::service_uncounted_t<recorded_console> console;
    ostrevan::service_uncounted_t<recorded_crash_log> crash_log;
    ostrevan::service_uncounted_t<memory_clipboard> clipboard;
    ostrevan::service_uncounted_t<counted_beeps> beeps;
    ostrevan::service_uncounted_t<memory_configuration> configuration;
    ostrevan::service_uncounted_t<memory_library> library;
    ostrevan::service_uncounted_t<memory_metadb> metadb;
    ostrevan::service_uncounted_t<memory_playlists> playlists;
    ostrevan::service_uncounted_t<memory_decoders> decoders;
    ostrevan::service_uncounted_t<field_titleformat> titleformat;
    ostrevan::service_uncounted_t<memory_filesystem> local_files{"file://", false};
    ostrevan::service_uncounted_t<memory_filesystem> remote_files{"http://", true};
    ostrevan::service_uncounted_t<recorded_tag_updates> tag_updates;
    ostrevan::service_uncounted_t<recorded_reloads> reloads;
    ostrevan::service_uncounted_t<memory_dialog_registry> open_dialogs;
    ostrevan::service_uncounted_t<memory_dialogs> dialogs{open_dialogs};
    ostrevan::service_uncounted_t<recorded_file_questions> file_dialog{main_queue};
    ostrevan::service_uncounted_t<recorded_searches> searches;
    ostrevan::service_uncounted_t<recorded_progress> progress;
    // Without state, and used by components beyond the end of one player.
    static ostrevan::service_uncounted_t<memory_hash> hash;
    static ostrevan::service_uncounted_t<memory_letters> letters;

    std::atomic<bool> shutting_down = false;
    bool quiet = false;
    std::string profile = "/profile";
    void* window = this;  ///< the main window; a stand-in where nothing is drawn

    ostrevan::component_api& component() noexcept { return *component_; }
    /// The component's service of a class; ends the test when there is none.
    template <typename T>
    T& component_service(std::size_t which = 0) {
        for (std::size_t i = 0; i < component_->service_count(); ++i) {
            const auto entry = component_->service_at(i);
            if (entry.service_class == T::class_guid && which-- == 0) return static_cast<T&>(*entry.service);
        }
        throw std::logic_error("the component has no such service");
    }

    /// Offers a service of the test's own, ahead of the player's services of the same class.
    void offer(const nuv::guid& service_class, ostrevan::service_base& service);
    void withdraw(const nuv::guid& service_class);

    /// The start-up sequence: stages up to 30, start-up notifications, all other stages.
    void start();
    void shut_down();
    /// Runs waiting tasks and callbacks until nothing is left to do.
    void settle();

    std::size_t service_count(const nuv::guid& service_class) const noexcept override;
    ostrevan::service_base* service_at(const nuv::guid& service_class, std::size_t which) const noexcept override;
    bool is_main_thread() const noexcept override { return std::this_thread::get_id() == main_thread_; }
    bool is_shutting_down() const noexcept override { return shutting_down; }
    bool is_quiet_mode() const noexcept override { return quiet; }
    const char* profile_path() const noexcept override { return profile.c_str(); }
    void* main_window() const noexcept override {
        require_main_thread("main_window");
        return window;
    }
    [[noreturn]] void bug_check(const char* text) noexcept override;

private:
    std::thread::id main_thread_ = std::this_thread::get_id();
    std::vector<ostrevan::component_api::service_entry> services_;
    ostrevan::component_api* component_ = nullptr;
    bool started_ = false;
};

}  // namespace ostrevan_test
