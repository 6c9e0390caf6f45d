#include <gtest/gtest.h>

#include <filesystem>

#include "ostrevan/library.h"
#include "ostrevan/startup.h"
#include "ostrevan/tag_edit.h"
#include "quorvel/store/key.h"
#include "quorvel/store/key_change.h"
#include "quorvel/store/pcdb.h"
#include "tests/support/memory_player.h"

using namespace quorvel;
using track_list = ostrevan::metadb_handle_list;
using texts = std::vector<std::string>;

namespace {

const std::string legacy_file =
    std::string("/profile") + static_cast<char>(std::filesystem::path::preferred_separator) + "PlaybackStatistics.dat";

class database_start : public testing::Test {
protected:
    support::memory_player player;
    support::memory_index& index = player.index;

    void put(const nuv::guid& in, std::uint64_t key, const t_playback_stats& record) {
        const auto blob = encode_record(record);
        index.write(in, key, blob.data(), blob.size());
    }
    /// Another start of the player, up to where nothing is left to do.
    void start() {
        player.shut_down();
        player.shutting_down = false;
        index.events.clear();
        player.console.lines.clear();
        player.start();
        player.settle();
    }
};
using migration = database_start;
using tag_edit = database_start;

std::uint64_t key_under(const nuv::guid& mapping, const ostrevan::metadb_handle_ptr& track) {
    return FindMapping(mapping)->key_of(track->info()->info(), track->location());
}

/// With both values of the track number, so that the mappings give different keys.
support::memory_track_ptr numbered(const char* path, const char* number, const char* title) {
    return support::make_track(
        path, {{"artist", "a"}, {"album", "b"}, {"tracknumber", number}, {"tracknumber", title}, {"title", title}});
}

}  // namespace

TEST_F(database_start, registers_the_index_and_stamps_what_is_in_the_library) {
    const auto tracks = support::make_tracks(3);
    player.library.items = tracks.items();
    EXPECT_EQ(PCDB::Get(*tracks[0]), t_playback_stats{});
    PCDB::ItemPlayed(*tracks[0]);
    EXPECT_TRUE(PCDB::KeysFrom(0, 100).empty()) << "nothing is written before the start";
    start();
    const auto& registered = index.registered.at(statistics_index_guid);
    EXPECT_EQ(registered.retention, 24'192'000'000'000U);
    EXPECT_EQ(registered.client->key_of(tracks[0]->info()->info(), tracks[0]->location()), KeyOf(*tracks[0]));
    for (const auto& track : tracks) EXPECT_NE(PCDB::Get(*track).added, 0U);
}

TEST_F(database_start, runs_on_without_an_index_and_says_so_once) {
    const auto tracks = support::make_tracks(2);
    player.library.items = tracks.items();
    index.fail_registration = index.fail_removal = true;
    start();
    EXPECT_EQ(index.removed, std::vector{statistics_index_guid});
    const std::vector<support::shown_message> expected{
        {"Playback Statistics initialization failure: index cannot be opened", "Information", 0}};
    EXPECT_EQ(player.popups.messages, expected);
    PCDB::ItemPlayed(*tracks[0]);
    PCDB::SetRating(tracks, 63);
    EXPECT_EQ(PCDB::Get(*tracks[0]), t_playback_stats{});
    EXPECT_EQ(index.begun + index.direct_writes + index.refreshes.size(), 0U);
}

TEST_F(database_start, heeds_library_additions_between_start_and_shutdown) {
    auto& watch = player.component_service<ostrevan::library_callback>();
    const auto tracks = support::make_tracks(3);
    const auto add = [&](std::size_t i) {
        watch.on_items_added(track_list{tracks[i]});
        player.settle();
    };
    add(0);
    start();
    add(1);
    player.shutting_down = true;
    add(2);
    EXPECT_EQ(PCDB::KeysFrom(0, 100), std::vector{KeyOf(*tracks[1]).value()});
}

TEST_F(database_start, is_followed_by_an_end_that_finishes_what_is_queued) {
    start();
    const auto tracks = support::make_tracks(2);
    const auto info = support::make_info({{"artist", "a"}, {"title", "new"}});
    const auto key = KeyOf(info, tracks[0]->location()).value();
    put(statistics_index_guid, *KeyOf(*tracks[0]), {.play_count = 3, .added = 1});
    player.component_service<ostrevan::library_callback>().on_items_added(tracks);
    player.component_service<ostrevan::tag_edit_callback>().on_tags_edited(
        nuv::list_t<ostrevan::tag_edit>{{tracks[0], &tracks[0]->info()->info(), &info, nullptr}});
    player.shutting_down = true;
    ostrevan::for_each_service<ostrevan::startup_notification>([](auto& notification) { notification.on_shutdown(); });
    record_blob blob;
    EXPECT_EQ(index.read(statistics_index_guid, key, blob.data(), blob.size()), record_blob_size);
    EXPECT_EQ(index.keys(statistics_index_guid).size(), 3U);
    EXPECT_TRUE(index.refreshes.empty()) << "nothing is shown any more";
}

TEST_F(migration, merges_older_records_before_anything_is_added_to_them) {
    const auto both = numbered("/1", "1", "x");
    const auto copy = numbered("/copy", "1", "x");
    const auto played = numbered("/2", "2", "y");
    const auto same_number = numbered("/3", "2", "z");
    for (const bool transactions : {true, false}) {
        index.offer_transactions = transactions;
        index.clear();
        player.library.items = {both, played, copy};
        const auto old = [&](const nuv::guid& mapping, const auto& track, const t_playback_stats& record) {
            put(mapping, key_under(mapping, track), record);
        };
        old(legacy_track_mapping_guid, both, {.play_count = 2, .added = 4, .rating = 100});
        old(repeated_track_mapping_guid, both, {.play_count = 3, .added = 5, .rating = 200});
        old(repeated_track_mapping_guid, played, {.play_count = 40, .added = 5});
        old(active_mapping_guid, played, {.play_count = 1, .added = 9, .rating = 63});
        // One record of version 1: "/2", subsong 0, two plays.
        player.metadb.tracks[{"/2", 0}] = played;
        player.local_files.files[legacy_file] =
            std::string("\x47\xD4\xA7\x22\x5C\xDA\xF5\x42\x9E\x1A\x5D\xD9\xDE\x85\xA8\x12", 16) +
            std::string("\1\0\0\0\2\0\0\0/2\0\0\0\0\2\0\0\0\0\0\0\0", 22) + std::string(16, 0);
        for (const char* when : {"first start", "second start"}) {
            start();
            const std::string first_event = when[0] == 'f' ? "back up migration " : "nothing";
            EXPECT_EQ(index.events.empty() ? "nothing" : index.events[0], first_event) << when;
            EXPECT_EQ(PCDB::Get(*both), (t_playback_stats{.play_count = 3, .added = 4, .rating = 150})) << when;
            EXPECT_EQ(PCDB::Get(*played), (t_playback_stats{.play_count = 42, .added = 5, .rating = 63})) << when;
        }
        PCDB::Reset(track_list{played});
        player.library.items.push_back(same_number);
        start();
        EXPECT_EQ(PCDB::Get(*played).play_count, 0U) << "what is done stays done";
    }
    // A play of a file outside the library keeps nothing out.
    PCDB::ItemPlayed(*same_number);
    put(repeated_track_mapping_guid, key_under(repeated_track_mapping_guid, same_number), {.play_count = 40, .added = 4});
    player.component_service<ostrevan::library_callback>().on_items_added(track_list{same_number});
    EXPECT_EQ(PCDB::Get(*same_number).play_count, 40U);
    EXPECT_EQ(PCDB::Get(*same_number).added, 4U);
}

TEST_F(migration, that_fails_keeps_back_the_dates_of_its_own_tracks_only) {
    const auto old = numbered("/1", "1", "x");
    const auto other = numbered("/2", "2", "y");
    player.library.items = {old, other};
    const std::uint64_t older_key = key_under(repeated_track_mapping_guid, old);
    put(repeated_track_mapping_guid, older_key, {.play_count = 2, .added = 4});
    player.local_files.files[legacy_file] = "not looked at";
    for (const std::string reason : {"no room for a copy", "index cannot be read"}) {
        index.fail_backup = reason == "no room for a copy";
        if (!index.fail_backup) {
            index.unreadable_key = older_key;
            PCDB::Update(*KeyOf(*other), [](t_playback_stats& record) { record.added = 0; });
        }
        start();
        EXPECT_EQ(player.console.lines,
                  texts{"Playback statistics: records under older keys could not be taken over: " + reason});
        EXPECT_TRUE(player.popups.messages.empty()) << "the file of early releases waits too";
        EXPECT_NE(PCDB::Get(*other).added, 0U) << reason;
        EXPECT_EQ(PCDB::Get(*old), t_playback_stats{});
    }
    index.unreadable_key.reset();
    index.fail_read = true;
    start();
    EXPECT_EQ(player.console.lines,
              texts{"Playback statistics: records under older keys could not be taken over: index cannot be read"});
    index.fail_read = false;
    index.writes_until_failure = 0;
    start();
    EXPECT_EQ(player.console.lines, texts{"Track information database save failure: index cannot be written"});
    index.writes_until_failure = index.unlimited;
    start();
    EXPECT_EQ(PCDB::Get(*old), (t_playback_stats{.play_count = 2, .added = 4}));
    EXPECT_EQ(index.refreshes.back(), std::vector{*KeyOf(*old)}) << "and not the older key";
}

TEST_F(tag_edit, takes_the_statistics_along) {
    start();
    auto& watch = player.component_service<ostrevan::tag_edit_callback>();
    const auto outcome = ostrevan::query_service<ostrevan::tag_edit_outcome>(watch);
    const auto track = support::make_track("/a", {});
    const auto named = [](const char* title) { return support::make_info({{"artist", "a"}, {"title", title}}); };
    const auto a = named("a"), b = named("b"), c = named("c"), in_file = named("in the file");
    const auto at = [&](const ostrevan::file_info& info) { return KeyOf(info, track->location()).value(); };
    const auto edit = [&](std::vector<ostrevan::tag_edit> edits) {
        index.refreshes.clear();
        index.events.clear();
        watch.on_tags_edited(nuv::list_t<ostrevan::tag_edit>(std::move(edits)));
        player.settle();
    };
    for (const bool transactions : {true, false}) {
        index.offer_transactions = transactions;
        index.clear();
        put(statistics_index_guid, at(a), {.play_count = 3, .added = 5});
        put(statistics_index_guid, at(in_file), {.play_count = 1, .added = 2});
        edit({{track, &a, &b, &in_file}, {track, &b, &c, &b}});
        EXPECT_EQ(PCDB::GetByKey(at(c)), (t_playback_stats{.play_count = 3, .added = 2})) << "one edit after the other";
        EXPECT_EQ(PCDB::GetByKey(at(a)).play_count, 3U) << "the old record stays";
        EXPECT_EQ(index.refreshes, (std::vector<std::vector<std::uint64_t>>{{at(b), at(c)}}));
        EXPECT_EQ(index.events, transactions ? (texts{"commit", "refresh"}) : texts{"refresh"});
        edit({{track, &c, &a, &c}});
        EXPECT_EQ(PCDB::GetByKey(at(a)).play_count, 3U) << "an edit back adds nothing up";
    }
    EXPECT_TRUE(outcome->all_followed());
    index.fail_read = true;
    edit({{track, &a, &in_file, nullptr}});
    index.fail_read = false;
    EXPECT_EQ(player.console.lines,
              texts{"Playback statistics: statistics could not follow a tag edit, which is tried again at "
                    "the next start: index cannot be read"});
    EXPECT_FALSE(outcome->all_followed());
    EXPECT_TRUE(outcome->all_followed()) << "of what was told since then";
    const auto started = player.threads.started.load();
    const auto retagged = support::make_info({{"artist", "a"}, {"title", "a"}, {"comment", "new"}});
    edit({{track, &a, &retagged, &a}});
    EXPECT_EQ(player.threads.started, started) << "the key has stayed";
    const nuv::list_t<ostrevan::tag_edit> known_as_in_file{{track, &a, &b, &a}};
    EXPECT_EQ(key_changes(known_as_in_file), (std::vector<key_change>{{at(a), at(b)}})) << "merged once";
    const auto untitled = support::make_info({});
    const ostrevan::playable_location then{"/then", 0};
    const nuv::list_t<ostrevan::tag_edit> renamed{{track, &untitled, &untitled, nullptr, &then}};
    EXPECT_EQ(key_changes(renamed), (std::vector<key_change>{{KeyOf(untitled, then).value(), at(untitled)}}));
    player.shut_down();
    EXPECT_FALSE(KeyOf(a, track->location()));
    edit({{track, &a, &b, nullptr}});
    EXPECT_FALSE(outcome->all_followed()) << "without an index";
}
