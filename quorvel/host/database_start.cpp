#include <algorithm>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/index.h"
#include "ostrevan/library.h"
#include "ostrevan/popup.h"
#include "ostrevan/registration.h"
#include "ostrevan/startup.h"
#include "quorvel/common/tasks.h"
#include "quorvel/store/key.h"
#include "quorvel/store/legacy_import.h"
#include "quorvel/store/migration.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/statistics_index.h"

namespace quorvel {
namespace {

/// 28 days in units of 100 ns.
constexpr std::uint64_t retention = 24'192'000'000'000;

/// Whether the tracks found at the start have been handled, so that those added from now on are new. [main-thread]
bool started = false;

void report_failed_start(const std::exception& e) {
    post_to_main_thread([text = std::string("Playback Statistics initialization failure: ") + e.what()] {
        if (const auto popup = ostrevan::find_service<ostrevan::popup_message>())
            popup->show(text.c_str(), "Information", ostrevan::popup_message::icon_information);
    });
}

/// Registers the statistics index. Without it the component runs on and shows no statistics.
class init_my_index : public ostrevan::initialisation_stage {
public:
    unsigned stage() const noexcept override { return 10; }
    void on_stage() override {
        started = false;
        const auto manager = ostrevan::find_service<ostrevan::index_manager>();
        try {
            if (!manager) throw ostrevan::exception_service_not_found();
            manager->register_index(active_mapping::start(), statistics_index_guid, retention);
            statistics_index::open(*manager);
        } catch (const std::exception& e) {
            if (manager) forget_registration(*manager);
            report_failed_start(e);
        }
    }

private:
    static void forget_registration(ostrevan::index_manager& manager) noexcept {
        try {
            manager.remove_index(statistics_index_guid);
        } catch (...) {  // the user is told why it could not be registered
        }
    }
};

ostrevan::metadb_handle_list tracks_of_library() {
    ostrevan::metadb_handle_list tracks;
    if (const auto library = ostrevan::find_service<ostrevan::library_manager>()) library->get_unordered_items(tracks);
    return tracks;
}

void stamp_others(std::vector<ostrevan::metadb_handle_ptr> waiting, ostrevan::metadb_handle_list tracks) {
    std::ranges::sort(waiting);
    std::erase_if(tracks.items(), [&](const auto& track) { return std::ranges::binary_search(waiting, track); });
    PCDB::OnAdded(std::move(tracks));
}

/// Tracks of the library whose older records could not be taken over; no dates added are set for them. [main-thread]
std::vector<ostrevan::metadb_handle_ptr> waiting_at_start;

/// Records under older keys come before the file of early releases, whose counts are added to theirs. At shutdown no batch
/// is cut in half.
class database_session : public ostrevan::startup_notification {
public:
    void on_startup() override {
        waiting_at_start.clear();
        if (may_hold_older_records()) waiting_at_start = take_over_older_records(tracks_of_library());
        // A start in quiet mode is not held up by an import.
        if (waiting_at_start.empty() && !ostrevan::core_api::is_quiet_mode()) PCDB_import_legacy();
    }
    void on_shutdown() override {
        started = false;
        finish_worker();
        statistics_index::close();
        active_mapping::stop();
    }
};

/// Sets the dates added of the tracks that are in the library already.
class library_scan : public ostrevan::initialisation_stage {
public:
    unsigned stage() const noexcept override { return 40; }
    void on_stage() override {
        stamp_others(std::exchange(waiting_at_start, {}), tracks_of_library());
        started = true;
    }
};

class library_watch : public ostrevan::library_callback {
public:
    void on_items_added(ostrevan::metadb_handle_list_cref items) override {
        if (!started || ostrevan::core_api::is_shutting_down()) return;
        stamp_others(take_over_older_records(items), ostrevan::metadb_handle_list(items));
    }
};

ostrevan::service_factory_single_t<init_my_index> g_init_my_index;
ostrevan::service_factory_single_t<library_scan> g_library_scan;
ostrevan::service_factory_single_t<library_watch> g_library_watch;
ostrevan::service_factory_single_t<database_session> g_database_session;

}  // namespace
}  // namespace quorvel
