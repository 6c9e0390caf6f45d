#include <exception>
#include <string>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/index.h"
#include "ostrevan/library.h"
#include "ostrevan/popup.h"
#include "ostrevan/registration.h"
#include "ostrevan/startup.h"
#include "quorvel/common/main_thread_post.h"
#include "quorvel/store/index_writer.h"
#include "quorvel/store/key.h"
#include "quorvel/store/migration.h"
#include "quorvel/store/pcdb.h"

namespace quorvel {
namespace {

/// 28 days in units of 100 ns.
constexpr std::uint64_t retention = 24'192'000'000'000;

/// Whether the library has been gone through, so that what is added from now on is new. [main-thread]
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
            if (manager) manager->remove_index(statistics_index_guid);
            report_failed_start(e);
        }
    }
};

/// Records under older keys come first: what is stamped has a record, and would not be given the older one any more. When
/// they cannot be taken over, the dates wait for the next start.
void take_in(ostrevan::metadb_handle_list tracks) {
    if (migrate_older_mappings(tracks)) PCDB::OnAdded(std::move(tracks));
}

/// Goes through the tracks that are in the library already.
class library_scan : public ostrevan::initialisation_stage {
public:
    unsigned stage() const noexcept override { return 40; }
    void on_stage() override {
        ostrevan::metadb_handle_list tracks;
        if (const auto library = ostrevan::find_service<ostrevan::library_manager>()) library->get_all_items(tracks);
        take_in(std::move(tracks));
        started = true;
    }
};

class library_watch : public ostrevan::library_callback {
public:
    void on_items_added(ostrevan::metadb_handle_list_cref items) override {
        if (started && !ostrevan::core_api::is_shutting_down()) take_in(ostrevan::metadb_handle_list(items));
    }
};

class database_shutdown : public ostrevan::startup_notification {
public:
    void on_shutdown() override {
        started = false;
        statistics_index::close();
        active_mapping::stop();
    }
};

ostrevan::service_factory_single_t<init_my_index> index_start;
ostrevan::service_factory_single_t<library_scan> scan_at_start;
ostrevan::service_factory_single_t<library_watch> watch;
ostrevan::service_factory_single_t<database_shutdown> shutdown;

}  // namespace
}  // namespace quorvel
