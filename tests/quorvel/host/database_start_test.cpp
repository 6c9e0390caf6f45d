#include <gtest/gtest.h>

#include "ostrevan/library.h"
#include "ostrevan/tag_edit.h"
#include "quorvel/store/key.h"
#include "quorvel/store/key_change.h"
#include "quorvel/store/pcdb.h"
#include "tests/support/memory_player.h"

using namespace quorvel;
using track_list = ostrevan::metadb_handle_list;

namespace {

void put(support::memory_player& player, const nuv::guid& index, std::uint64_t key, const t_playback_stats& record) {
    const auto blob = encode_record(record);
    player.index.write(index, key, blob.data(), blob.size());
}

std::uint64_t key_under(const nuv::guid& mapping, const ostrevan::metadb_handle& track) {
    return FindMapping(mapping)->key_of(track.info()->info(), track.location());
}

}  // namespace

TEST(database_start, registers_the_index_and_stamps_what_is_in_the_library) {
    support::memory_player player;
    const auto tracks = support::make_tracks(3);
    player.library.items = tracks.items();
    EXPECT_EQ(PCDB::Get(*tracks[0]), t_playback_stats{});
    PCDB::ItemPlayed(*tracks[0]);
    EXPECT_TRUE(PCDB::Keys().empty()) << "nothing is written before the start";

    player.start();
    const auto& registered = player.index.registered.at(statistics_index_guid);
    EXPECT_EQ(registered.retention, 24'192'000'000'000U);
    EXPECT_EQ(registered.client->key_of(tracks[0]->info()->info(), tracks[0]->location()), KeyOf(*tracks[0]));
    player.settle();
    for (const auto& track : tracks) EXPECT_NE(PCDB::Get(*track).added, 0U);
}

TEST(database_start, runs_on_without_an_index_and_says_so_once) {
    support::memory_player player;
    player.index.fail_registration = true;
    const auto tracks = support::make_tracks(2);
    player.library.items = tracks.items();
    player.start();
    player.settle();
    EXPECT_EQ(player.index.removed, std::vector{statistics_index_guid});
    const std::vector<support::shown_message> expected{
        {"Playback Statistics initialization failure: index cannot be opened", "Information", 0}};
    EXPECT_EQ(player.popups.messages, expected);

    PCDB::ItemPlayed(*tracks[0]);
    PCDB::SetRating(tracks, 63);
    EXPECT_EQ(PCDB::Get(*tracks[0]), t_playback_stats{});
    EXPECT_EQ(player.index.begun + player.index.direct_writes, 0U);
    EXPECT_TRUE(player.index.refreshes.empty());
}

TEST(database_start, heeds_library_additions_between_start_and_shutdown) {
    support::memory_player player;
    auto& watch = player.component_service<ostrevan::library_callback>();
    const auto tracks = support::make_tracks(3);
    const auto add = [&](std::size_t i) {
        watch.on_items_added(track_list{tracks[i]});
        player.settle();
    };
    add(0);
    player.start();
    add(1);
    player.shutting_down = true;
    add(2);
    EXPECT_EQ(PCDB::Keys(), std::vector{KeyOf(*tracks[1]).value()});
}

TEST(migration, takes_older_records_where_there_are_none_yet) {
    support::memory_player player;
    const auto tagged = [](const char* path, const char* title) {
        return support::make_track(
            path, {{"artist", "a"}, {"album", "b"}, {"tracknumber", title}, {"tracknumber", "7"}, {"title", title}});
    };
    const auto only_old = tagged("/1", "1");
    const auto has_new = tagged("/2", "2");
    player.library.items = {only_old, has_new};
    put(player, repeated_track_mapping_guid, key_under(repeated_track_mapping_guid, *only_old),
        {.play_count = 3, .added = 5});
    put(player, legacy_track_mapping_guid, key_under(legacy_track_mapping_guid, *only_old), {.play_count = 2, .added = 4});
    put(player, active_mapping_guid, key_under(active_mapping_guid, *has_new), {.play_count = 1, .added = 9});

    for (int start = 0; start < 2; ++start) {
        player.start();
        EXPECT_EQ(PCDB::Get(*only_old), (t_playback_stats{.play_count = 3, .added = 4})) << "before dates are stamped";
        EXPECT_EQ(PCDB::Get(*has_new), (t_playback_stats{.play_count = 1, .added = 9}));
        EXPECT_EQ(player.index.refreshes.size(), start == 0 ? 1U : 0U) << "the second start changes nothing";
        player.index.refreshes.clear();
        player.shut_down();
        player.shutting_down = false;
    }
}

TEST(migration, reports_a_failure_to_save_on_the_console) {
    support::memory_player player;
    const auto track = support::make_track("/1", {{"artist", "a"}, {"title", "t"}});
    player.library.items = {track};
    put(player, legacy_track_mapping_guid, key_under(legacy_track_mapping_guid, *track), {.play_count = 2, .added = 4});
    player.index.writes_until_failure = 0;
    player.start();
    EXPECT_EQ(player.console.lines,
              std::vector<std::string>{"Track information database save failure: index cannot be written"});
    EXPECT_TRUE(player.popups.messages.empty());

    // A date stamped meanwhile would be the track's record, and keep the older one out for good.
    player.settle();
    player.shut_down();
    player.shutting_down = false;
    player.index.writes_until_failure = 100;
    player.start();
    EXPECT_EQ(PCDB::Get(*track), (t_playback_stats{.play_count = 2, .added = 4}));
}

TEST(tag_edit, takes_the_statistics_along) {
    support::memory_player player;
    player.start();
    auto& watch = player.component_service<ostrevan::tag_edit_callback>();
    const auto track = support::make_track("/a", {});
    const auto before = support::make_info({{"artist", "a"}, {"title", "before"}});
    const auto in_file = support::make_info({{"artist", "a"}, {"title", "in the file"}});
    const auto after = support::make_info({{"artist", "a"}, {"title", "after"}});
    const auto at = [&](const ostrevan::file_info& info) { return KeyOf(info, track->location()).value(); };
    put(player, statistics_index_guid, at(before), {.play_count = 3, .added = 5});
    put(player, statistics_index_guid, at(in_file), {.play_count = 1, .added = 2});

    const auto edit = [&](const ostrevan::file_info& from, const ostrevan::file_info& to, const ostrevan::file_info* file) {
        player.index.refreshes.clear();
        watch.on_tags_edited(nuv::list_t<ostrevan::tag_edit>{{track, &from, &to, file}});
        player.settle();
    };
    edit(before, after, &in_file);
    EXPECT_EQ(PCDB::GetByKey(at(after)), (t_playback_stats{.play_count = 3, .added = 2}));
    EXPECT_EQ(PCDB::GetByKey(at(before)).play_count, 3U) << "the old record stays";
    EXPECT_EQ(player.index.refreshes, (std::vector<std::vector<std::uint64_t>>{{at(after)}}));

    edit(after, before, &after);
    EXPECT_EQ(PCDB::GetByKey(at(before)).play_count, 3U) << "an edit back adds nothing up";
    const auto started = player.threads.started.load();
    auto retagged = after;
    retagged.meta_set("comment", "new");
    edit(after, retagged, &after);
    EXPECT_EQ(player.threads.started, started) << "the key has stayed";

    const nuv::list_t<ostrevan::tag_edit> known_as_in_file{{track, &before, &after, &before}};
    EXPECT_EQ(key_changes(known_as_in_file), (std::vector<key_change>{{at(before), at(after)}})) << "merged once";
    const auto last = support::make_info({{"artist", "a"}, {"title", "last"}});
    player.shutting_down = true;
    edit(before, last, nullptr);
    EXPECT_EQ(PCDB::GetByKey(at(last)).play_count, 3U);
    EXPECT_TRUE(player.index.refreshes.empty()) << "nothing is shown any more";
}
