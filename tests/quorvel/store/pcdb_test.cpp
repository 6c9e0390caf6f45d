#include "quorvel/store/pcdb.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "ostrevan/statistics_collector.h"
#include "quorvel/common/settings.h"
#include "quorvel/platform/clock.h"
#include "quorvel/store/key.h"
#include "quorvel/store/statistics_index.h"
#include "quorvel/store/stats_op.h"
#include "tests/support/memory_player.h"

using namespace quorvel;
using track_list = ostrevan::metadb_handle_list;

namespace {

/// A started player and one track.
class pcdb : public testing::Test {
protected:
    pcdb() {
        player.start();
        key = KeyOf(*track).value();
    }

    void store(const t_playback_stats& record) {
        PCDB::Update(key, [&](t_playback_stats& r) { r = record; });
        forget_traffic();
    }
    void forget_traffic() {
        player.index.refreshes.clear();
        player.index.events.clear();
        player.index.begun = 0;
    }
    /// Redraws once, and only after the commit where there are transactions.
    [[nodiscard]] bool refreshed_once() const {
        auto events = player.index.offer_transactions ? std::vector<std::string>{"commit"} : std::vector<std::string>{};
        events.emplace_back("refresh");
        return player.index.refreshes == std::vector<std::vector<std::uint64_t>>{{key}} && player.index.events == events;
    }
    t_playback_stats stored() { return PCDB::Get(*track); }

    support::memory_player player;
    support::memory_track_ptr track = support::make_track("/music/a.flac", {{"artist", "a"}, {"title", "t"}});
    std::uint64_t key = 0;
};

using pcdb_death = pcdb;

}  // namespace

TEST_F(pcdb, counts_a_play_and_keeps_the_first) {
    const auto before = filetime_now();
    PCDB::ItemPlayed(*track);
    const auto first = stored();
    EXPECT_EQ(first.play_count, 1U);
    EXPECT_EQ(first.first_played, first.last_played);
    EXPECT_GE(first.first_played, before);
    EXPECT_LE(first.first_played, filetime_now());
    EXPECT_NE(first.first_played % filetime_per_second, 0U) << "a moment, not a second";
    EXPECT_TRUE(refreshed_once());

    store({1, 5, 6, 7, 63, 0xABCD});
    PCDB::ItemPlayed(*track);
    EXPECT_EQ(stored().play_count, 2U);
    EXPECT_EQ(stored().first_played, 5U);
    EXPECT_GE(stored().last_played, before);
    EXPECT_EQ(stored().trailing, 0xABCDU);

    track->forget_info();
    PCDB::ItemPlayed(*track);
    EXPECT_EQ(PCDB::GetByKey(key).play_count, 2U) << "a track without a key is not counted";
}

TEST_F(pcdb, collector_counts_on_the_main_thread_while_monitoring_is_on) {
    auto& collector = player.component_service<ostrevan::playback_statistics_collector>();
    std::thread([&] { collector.on_item_played(track); }).join();
    EXPECT_EQ(stored().play_count, 0U);
    player.settle();
    EXPECT_EQ(stored().play_count, 1U);
    EXPECT_TRUE(player.tag_updates.requests.empty());
    for (const bool monitoring : {false, true}) {
        monitoring_enabled.set(monitoring);
        tag_sync_enabled.set(true);
        collector.on_item_played(track);
        player.settle();
        tag_sync_enabled.set(false);
        EXPECT_EQ(stored().play_count, monitoring ? 2U : 1U);
    }
    ASSERT_EQ(player.tag_updates.requests.size(), 1U);
    EXPECT_EQ(player.tag_updates.requests[0].options, 5U);
    player.tag_updates.run_next();
    EXPECT_EQ(track->info()->info().meta_value(track->info()->info().meta_find("play_count"), 0), "2");

    collector.on_item_played({});
    const auto teller = ostrevan::query_service<ostrevan::playback_statistics_outcome>(collector);
    const auto told = [&] {
        std::string what = "nothing";
        teller->on_item_played(track, [&](ostrevan::play_outcome outcome, const char* reason) {
            what = std::to_string(static_cast<int>(outcome)) + (reason == nullptr ? "" : std::string(" ") + reason);
        });
        player.settle();
        return what;
    };
    EXPECT_EQ(told(), "0");
    player.index.writes_until_failure = 0;
    EXPECT_EQ(told(), "2 index cannot be written") << "and the player goes on";
    EXPECT_EQ(player.console.lines, std::vector<std::string>{"Playback statistics: a play of /music/a.flac could not be "
                                                             "saved: index cannot be written"});
    statistics_index::close();
    EXPECT_EQ(told(), "2 there is no index to keep statistics in");
    statistics_index::open(player.index);
    track->forget_info();
    EXPECT_EQ(told(), "1 nothing tells which track it is");
    monitoring_enabled.set(false);
    EXPECT_EQ(told(), "1 \"Monitor playing tracks\" is off");
    monitoring_enabled.set(true);
}

TEST_F(pcdb, resets_everything_but_the_date_added) {
    store({.added = 9});
    PCDB::Reset(track_list{track});
    EXPECT_EQ(player.index.begun, 0U) << "nothing to reset";
    for (const t_playback_stats& record : {t_playback_stats{3, 4, 5, 9, 106, 7}, t_playback_stats{0, 0, 0, 9, 0}}) {
        store(record);
        PCDB::Reset(track_list{track});
        EXPECT_EQ(stored(), (t_playback_stats{.added = 9}));
        EXPECT_EQ(stored().trailing, record.trailing);
        EXPECT_TRUE(refreshed_once());
    }
}

TEST_F(pcdb, merges_a_batch_in_one_transaction_and_one_refresh) {
    for (const bool transactions : {true, false}) {
        player.index.offer_transactions = transactions;
        store({.added = 1});
        const auto nameless = support::make_track("/music/c", {});
        nameless->forget_info();
        const std::vector<PCDB::TrackRecord> pairs{
            {track, {.play_count = 3}}, {nameless, {.play_count = 9}}, {track, {.play_count = 4}}};
        PCDB::MergeBatch(pairs, MergeType::MergeSum);
        EXPECT_EQ(stored().play_count, 7U);
        EXPECT_TRUE(refreshed_once());
        EXPECT_EQ(player.index.begun, transactions ? 1U : 0U);

        forget_traffic();
        PCDB::MergeBatch(pairs, MergeType::MergeMax);
        EXPECT_TRUE(player.index.refreshes.empty()) << "nothing changed";
    }
}

TEST_F(pcdb, writes_nothing_of_an_operation_that_fails) {
    const auto tracks = support::make_tracks(10);
    player.index.writes_until_failure = 5;
    EXPECT_ANY_THROW(PCDB::SetRating(tracks, 63));
    for (const auto& other : tracks) EXPECT_EQ(PCDB::Get(*other), t_playback_stats{});
    player.index.writes_until_failure = 1000;
    PCDB::SetRating(tracks, 63);
    EXPECT_EQ(PCDB::KeysFrom(0, 100).size(), 10U) << "the failed transaction has been given up";

    store({.play_count = 8});
    player.index.fail_read = true;
    EXPECT_EQ(stored(), t_playback_stats{});
    EXPECT_ANY_THROW(PCDB::ItemPlayed(*track));
    EXPECT_ANY_THROW(PCDB::Update(key, [](t_playback_stats&) {})) << "nobody knows that there is nothing to do";
    player.index.fail_read = false;
    EXPECT_EQ(stored().play_count, 8U) << "a record that could not be read is not replaced by a new one";
}

TEST_F(pcdb, reads_a_blob_of_another_size_as_the_default_record) {
    const std::string bytes(64, '\1');
    for (const std::size_t size : {1, 39, 41, 64}) {
        player.index.write(statistics_index_guid, key, bytes.data(), size);
        EXPECT_EQ(stored(), t_playback_stats{}) << size;
        PCDB::ItemPlayed(*track);
        EXPECT_EQ(stored().play_count, 1U) << size;
    }
}

TEST_F(pcdb, finishes_an_operation_during_which_the_index_is_closed_but_never_writes_key_0) {
    for (const bool transactions : {true, false}) {
        player.index.offer_transactions = transactions;
        StatsOp op;
        op.SetByKey(1, {.play_count = 1});
        op.SetByKey(0, {.play_count = 1});
        op.Update(0, [](t_playback_stats& record) { record.play_count = 1; });
        statistics_index::close();
        op.SetByKey(2, {.play_count = 1});
        op.finish();
        EXPECT_EQ(player.index.keys(statistics_index_guid), (std::vector<std::uint64_t>{1, 2}));
        EXPECT_EQ(op.changed_keys().size(), 2U);
        statistics_index::open(player.index);
        player.index.clear();
    }
}

TEST_F(pcdb, stamps_the_date_added_once) {
    for (const bool transactions : {true, false}) {
        player.index.offer_transactions = transactions;
        store({.play_count = 2});
        const auto dated = support::make_track("/b", {{"artist", "b"}});
        PCDB::Update(*KeyOf(*dated), [](t_playback_stats& record) { record.added = 1; });
        const auto unread = support::make_track("/c", {});
        unread->forget_info();
        forget_traffic();

        const auto before = filetime_now();
        PCDB::OnAdded(track_list{track, dated, unread, track});
        EXPECT_EQ(stored().added, 0U) << "left to the worker";
        player.settle();
        EXPECT_EQ(stored().play_count, 2U);
        EXPECT_GE(stored().added, before);
        EXPECT_EQ(PCDB::Get(*dated).added, 1U);
        PCDB::OnAdded(track_list{track, dated});
        player.settle();
        EXPECT_TRUE(refreshed_once()) << "the second time there is nothing to do";
    }
    player.threads.how = support::task_threads::mode::refuse;
    PCDB::OnAdded(track_list{track});
    EXPECT_EQ(player.console.lines,
              std::vector<std::string>{"Playback statistics: dates added could not be saved: no thread "
                                       "can be had (it is tried again with the next change of the "
                                       "library, or at the end)"});
}

TEST_F(pcdb, loses_no_write_of_two_threads) {
    constexpr std::size_t count = 2000;
    const auto tracks = support::make_tracks(count);
    player.threads.how = support::task_threads::mode::at_once;
    for (const bool transactions : {true, false}) {
        player.index.offer_transactions = transactions;
        player.index.clear();
        PCDB::OnAdded(tracks);
        std::thread other([this] {
            for (std::size_t i = 0; i < count; ++i) {
                StatsOp op;
                op.Update(key, [](t_playback_stats& record) { ++record.play_count; });
                op.finish();
            }
        });
        for (const auto& each : tracks) {
            PCDB::Update(*KeyOf(*each), [](t_playback_stats& record) { record.added = 5; });
            PCDB::ItemPlayed(*each);
            PCDB::ItemPlayed(*track);
        }
        other.join();
        player.settle();
        EXPECT_EQ(stored().play_count, 2 * count);
        for (const auto& each : tracks) {
            ASSERT_EQ(PCDB::Get(*each).play_count, 1U);
            ASSERT_EQ(PCDB::Get(*each).added, 5U);
        }
    }
}

TEST_F(pcdb_death, refuses_other_threads_than_the_main_thread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::function<void()> operations[] = {[&] { PCDB::ItemPlayed(*track); },
                                                [&] { PCDB::Reset(track_list{track}); },
                                                [&] { PCDB::OnAdded(track_list{track}); },
                                                [&] { PCDB::MergeBatch({}, MergeType::MergeSum); },
                                                [&] { PCDB::Update(key, [](t_playback_stats&) {}); },
                                                [&] { PCDB::SetRating(track_list{track}, 63); },
                                                [&] { PCDB::AdjustRating(track_list{track}, 1); },
                                                [&] { PCDB::ImportFromTags(track_list{track}); }};
    for (const auto& operation : operations) EXPECT_DEATH(std::thread(operation).join(), "^core_api::ensure_main_thread");
}
