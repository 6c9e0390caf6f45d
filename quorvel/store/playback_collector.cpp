#include <exception>
#include <string>

#include "ostrevan/registration.h"
#include "ostrevan/statistics_collector.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/settings.h"
#include "quorvel/common/tasks.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/statistics_index.h"
#include "quorvel/store/tag_sync.h"

namespace quorvel {
namespace {

using ostrevan::play_outcome;
using reply_t = ostrevan::playback_statistics_outcome::reply_t;

/// Whatever happens to the tags, the play has been counted.
void sync_tags(const ostrevan::metadb_handle_ptr& track) noexcept {
    try {
        PCDB_auto_sync_tags(ostrevan::metadb_handle_list{track}, false);
    } catch (const std::exception& e) {
        print_to_console("Playback statistics: the tags of " + track->location().path +
                         " could not follow a play: " + e.what());
    }
}

void count_play(const ostrevan::metadb_handle_ptr& track, const reply_t& reply) noexcept {
    if (opened_index() == nullptr) return reply(play_outcome::failed, "there is no index to keep statistics in");
    try {
        if (!PCDB::ItemPlayed(*track)) return reply(play_outcome::left_out, "nothing tells which track it is");
    } catch (const std::exception& e) {
        print_to_console("Playback statistics: a play of " + track->location().path + " could not be saved: " + e.what());
        return reply(play_outcome::failed, e.what());
    }
    reply(play_outcome::counted, nullptr);
    sync_tags(track);
}

void collect(const ostrevan::metadb_handle_ptr& track, reply_t reply) {
    if (!monitoring_enabled.get()) return reply(play_outcome::left_out, "\"Monitor playing tracks\" is off");
    if (track) post_to_main_thread([track, reply = std::move(reply)]() noexcept { count_play(track, reply); });
}

class counted_plays : public ostrevan::playback_statistics_outcome {
public:
    void on_item_played(const ostrevan::metadb_handle_ptr& track, reply_t reply) override {
        collect(track, std::move(reply));
    }
};

/// Counts what the player reports as played, on the main thread.
class playback_statistics_collector_impl : public ostrevan::playback_statistics_collector {
public:
    void on_item_played(const ostrevan::metadb_handle_ptr& track) override {
        collect(track, [](play_outcome, const char*) {});
    }
    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == ostrevan::playback_statistics_outcome::class_guid ? &outcome_ : nullptr;
    }

private:
    ostrevan::service_uncounted_t<counted_plays> outcome_;
};

ostrevan::service_factory_single_t<playback_statistics_collector_impl> g_playback_collector;

}  // namespace
}  // namespace quorvel
