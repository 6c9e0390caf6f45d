#include "quorvel/store/tag_sync.h"

#include "quorvel/store/statistics_index.h"
#include "quorvel/store/timestamp.h"
#include "tests/support/statistics_test.h"

namespace {

using ostrevan::metadb_handle_list;
using ostrevan::metadb_handle_ptr;
using quorvel::t_playback_stats;
using support::make_info;

class counting_notify : public ostrevan::completion_notify {
public:
    std::size_t calls = 0;
    void on_completion(unsigned) override { ++calls; }
};

class tag_sync : public support::statistics_test {
protected:
    support::memory_track_ptr track = support::make_track("/a", {{"artist", "a"}, {"title", "t"}});
    support::memory_track_ptr other = support::make_track("/b", {{"artist", "b"}, {"title", "t"}});
    const std::vector<metadb_handle_ptr> only_track{track};
};

TEST_F(tag_sync, stamps_the_record_of_the_moment_of_the_request) {
    put(track, {.play_count = 1});
    const auto notify = ostrevan::service_new<counting_notify>();
    {
        const metadb_handle_list tracks{track, other, track};
        quorvel::PCDB_stamp_tags(tracks, 3, notify);
    }
    put(track, {.play_count = 2});
    ASSERT_EQ(player.tag_updates.requests.size(), 1U);
    EXPECT_EQ(player.tag_updates.requests[0].options, 3U);
    EXPECT_EQ(player.tag_updates.requests[0].parent, player.main_window());
    ostrevan::file_info_builder info(make_info({{"play_count", "9"}}));
    EXPECT_FALSE(player.tag_updates.requests[0].filter->apply_filter(support::make_track("/c", {}), info));
    EXPECT_EQ(player.tag_updates.run_next(), only_track) << "a file that says the same is not written";
    EXPECT_EQ(track->info()->info(), make_info({{"artist", "a"}, {"title", "t"}, {"play_count", "1"}}));
    EXPECT_EQ(notify->calls, 1U);
}

TEST_F(tag_sync, compares_repaired_tags_with_the_record) {
    const auto kept = make_info({{"artist", "a"}, {"title", "t"}, {"last_played_timestamp", "9"}, {"play_counter", "2"}});
    track->publish(kept);
    put(track, {.play_count = 2, .first_played = 9, .last_played = 9, .added = 9});
    quorvel::PCDB_stamp_tags(metadb_handle_list{track}, 0, nullptr);
    EXPECT_TRUE(player.tag_updates.run_next().empty());
    EXPECT_EQ(track->info()->info(), kept);
}

TEST_F(tag_sync, leaves_files_alone_whose_statistics_cannot_be_read) {
    const auto kept = make_info({{"artist", "a"}, {"title", "t"}, {"play_count", "9"}});
    put(track, {.play_count = 1});
    const auto key = key_of(track);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"a blob that is no record", [&] { player.index.write(quorvel::statistics_index_guid, key, "x", 1); }},
        {"an index that cannot be read", [&] { player.index.fail_read = true; }},
        {"no key", [&] { player.index.fail_read = false, track->forget_info(); }},
        {"no index", [&] { quorvel::statistics_index::close(); }},
    };
    for (const auto& [what, make] : cases) {
        track->publish(kept);
        make();
        player.console.lines.clear();
        quorvel::PCDB_stamp_tags(metadb_handle_list{track, track}, 0, nullptr);
        EXPECT_TRUE(player.tag_updates.requests.empty()) << what;
        EXPECT_EQ(player.console.lines,
                  std::vector<std::string>{"Playback statistics: the file tags of /a and of 1 more tracks are left as they "
                                           "are, because their statistics cannot be read"})
            << what;
    }
    quorvel::statistics_index::open(player.index);
    put(other, {.play_count = 2});
    quorvel::PCDB_stamp_tags(metadb_handle_list{track, other}, 0, nullptr);
    EXPECT_EQ(player.tag_updates.run_next(), std::vector<metadb_handle_ptr>{other}) << "the rest is written";
}

TEST_F(tag_sync, swallows_a_request_that_cannot_be_made) {
    player.tag_updates.fail = true;
    EXPECT_NO_THROW(quorvel::PCDB_stamp_tags(metadb_handle_list{track}, 0, nullptr));
    player.withdraw(ostrevan::tag_update_service::class_guid);
    EXPECT_NO_THROW(quorvel::PCDB_stamp_tags(metadb_handle_list{track}, 0, nullptr));
    EXPECT_THROW(quorvel::PCDB_clear_tags(metadb_handle_list{track}, nullptr), ostrevan::exception_service_not_found);
}

TEST_F(tag_sync, follows_a_change_only_when_wanted_and_only_on_this_machine) {
    const auto remote = support::make_track("http://host/a.mp3", {{"artist", "c"}, {"title", "t"}});
    const auto unowned = support::make_track("/music/a.mp3", {{"artist", "d"}, {"title", "t"}});
    const auto local = support::make_track("file:///music/b.mp3", {{"artist", "e"}, {"title", "t"}});
    const metadb_handle_list tracks{remote, unowned, remote, local};
    quorvel::PCDB_auto_sync_tags(tracks, true);
    EXPECT_TRUE(player.tag_updates.requests.empty());

    auto& client = *player.index.registered.at(quorvel::statistics_index_guid).client;
    auto* const editing = ostrevan::query_service<ostrevan::index_record_editing>(client).get();
    quorvel::tag_sync_enabled.set(true);
    editing->on_records_changed(metadb_handle_list{remote});
    EXPECT_TRUE(player.tag_updates.requests.empty()) << "nothing left to write";
    for (const bool user_initiated : {true, false}) {
        if (user_initiated) editing->on_records_changed(tracks);
        else quorvel::PCDB_auto_sync_tags(tracks, false);
        const auto& request = player.tag_updates.requests.back();
        EXPECT_EQ(request.tracks.items(), (std::vector<metadb_handle_ptr>{unowned, local}));
        EXPECT_EQ(request.options, user_initiated ? 0U : 5U);
    }
    ostrevan::service_uncounted_t<support::memory_filesystem> first("file://", true);
    player.offer(first.class_guid, first);
    EXPECT_EQ(quorvel::writable_tracks(tracks).items(), std::vector<metadb_handle_ptr>{unowned})
        << "the first that is asked";
    EXPECT_EQ(ostrevan::filesystem::g_get("file:///x").get(), &first);
    player.withdraw(first.class_guid);
}

TEST_F(tag_sync, imports_the_fields_that_tags_supply_and_keeps_the_others) {
    const std::string date = "2024-03-05 07:08:09";
    const auto unread = support::make_track("/c", {{"artist", "c"}, {"title", "t"}});
    put(unread, {.play_count = 3});
    track->publish(make_info({{"artist", "a"}, {"title", "t"}, {"play_count", "2"}, {"added", date.c_str()}}));
    put(track, {.play_count = 9, .first_played = 5, .last_played = 6, .added = 4, .rating = 149});
    put(other, {.play_count = 1});
    const auto unread_key = key_of(unread);
    unread->forget_info();

    quorvel::PCDB::ImportFromTags(metadb_handle_list{track, other, unread, track});
    EXPECT_EQ(
        stored(track),
        (t_playback_stats{
            .play_count = 2, .first_played = 5, .last_played = 6, .added = quorvel::ParseTimestamp(date), .rating = 149}));
    EXPECT_EQ(quorvel::PCDB::GetByKey(unread_key).play_count, 3U);
    EXPECT_EQ(player.index.refreshes, std::vector<std::vector<std::uint64_t>>{{key_of(track)}});
    EXPECT_EQ(player.console.lines, std::vector<std::string>{"Playback statistics: file tags have changed the statistics of "
                                                             "1 of 4 tracks"});
}

}  // namespace
