#include <exception>
#include <string>

#include "ostrevan/registration.h"
#include "ostrevan/statistics_collector.h"
#include "quorvel/common/console_line.h"
#include "quorvel/common/main_thread_post.h"
#include "quorvel/common/settings.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/tag_sync.h"

namespace quorvel {
namespace {

void count_play(const ostrevan::metadb_handle_ptr& track) noexcept {
    try {
        PCDB::ItemPlayed(*track);
        PCDB_auto_sync_tags(ostrevan::metadb_handle_list{track}, false);
    } catch (const std::exception& e) {
        print_to_console("Playback statistics: a play of " + track->location().path + " could not be saved: " + e.what());
    }
}

/// Counts what the player reports as played, on the main thread.
class playback_statistics_collector_impl : public ostrevan::playback_statistics_collector {
public:
    void on_item_played(const ostrevan::metadb_handle_ptr& track) override {
        if (!monitoring_enabled.get() || !track) return;
        post_to_main_thread([track]() noexcept { count_play(track); });
    }
};

ostrevan::service_factory_single_t<playback_statistics_collector_impl> playback_collector;

}  // namespace
}  // namespace quorvel
