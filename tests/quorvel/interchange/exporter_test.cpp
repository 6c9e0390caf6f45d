#include "quorvel/interchange/exporter.h"
#include "ostrevan/exceptions.h"
#include "quorvel/store/record_fields.h"
#include "tests/quorvel/golden.h"
#include "tests/support/statistics_test.h"

using support::moment;
using support::second;

namespace {

using quorvel::all_fields;
using quorvel::t_playback_stats;
using quorvel::pcdb_export::exportToFile;
using quorvel::pcdb_export::writeEntry;

const std::string head = "<PlaybackStatistics Version=\"3.0\" Mapping=\"C653739F-14B3-4EF2-819B-A3E2883230AE\">\n";

class exporter : public support::statistics_test {
protected:
    support::memory_track_ptr ferry = support::make_track("file:///music/First Ferry.flac", {{"title", "First Ferry"}});
    support::memory_track_ptr copy = support::make_track("/old/Rock & Roll/ferry.flac", {{"title", "First Ferry"}}, 180);
    support::memory_track_ptr gulls = support::make_track("http://host/gulls", {{"title", "Gulls"}});
    support::memory_track_ptr gone = support::make_track("/gone.flac", {{"title", "Gone"}});

    exporter() {
        copy->publish(ferry->info()->info());
        put(ferry, {.play_count = 2,
                    .first_played = 133'541'244'480'000'000,
                    .last_played = 133'600'000'000'000'000,
                    .added = 133'500'000'000'000'000,
                    .rating = 149});
        put(gone, {.play_count = 1, .added = 1ULL << 63});
        player.library.items = {gulls, ferry, copy};
    }
    std::string exported(std::uint32_t fields, const quorvel::pcdb_export::track_list* tracks) {
        exportToFile("/out.xml", fields, tracks);
        return player.local_files.files.at("/out.xml");
    }
};

TEST_F(exporter, writes_every_record_with_the_tracks_of_the_library) {
    player.local_files.files["/out.xml"] = std::string(100'000, 'x');
    EXPECT_EQ(exported(all_fields, nullptr), golden("full_backup.xml"));
    EXPECT_EQ(player.local_files.flushes, 1U) << "a finished backup is on the disk";
    player.withdraw(player.library.class_guid);
    EXPECT_EQ(exported(quorvel::field_rating, nullptr), golden("ratings_without_library.xml"));
}

TEST_F(exporter, writes_a_selection_in_its_order_each_record_once) {
    const auto unread = support::make_track("/unread.flac", {{"title", "Unread"}});
    unread->forget_info();
    const ostrevan::metadb_handle_list selection{gulls, copy, unread, ferry};
    EXPECT_EQ(exported(all_fields, &selection), golden("selection.xml"));
    const ostrevan::metadb_handle_list reversed{ferry, gulls};
    const auto text = exported(quorvel::field_play_count, &reversed);
    EXPECT_LT(text.find("First Ferry"), text.find("gulls"));
    const ostrevan::metadb_handle_list none;
    EXPECT_EQ(exported(all_fields, &none), head + "</PlaybackStatistics>");
}

TEST_F(exporter, goes_through_an_index_of_any_size_in_portions) {
    constexpr std::uint64_t count = 2 * 4'096 - 2;  // with two that are there already; the last portion is full
    const auto blob = quorvel::encode_record({.play_count = 3});
    for (std::uint64_t i = 0; i < count; ++i)
        player.index.write(quorvel::statistics_index_guid, ~i, blob.data(), blob.size());
    const auto text = exported(quorvel::field_play_count, nullptr);
    EXPECT_EQ(std::ranges::count(text, '\n'), count + 1 + 3) << "a line an entry, two for the one with tracks";
    EXPECT_NE(text.find("\"ffffffffffffffff\""), std::string::npos);
    EXPECT_LT(player.local_files.largest_write, 17'000U);
    EXPECT_EQ(player.progress.started, std::vector<std::string>{"records exported"});
    EXPECT_FALSE(player.progress.steps.empty());
}

TEST_F(exporter, writes_no_defaults_for_records_that_cannot_be_read) {
    const ostrevan::metadb_handle_list selection{ferry};
    player.index.fail_read = true;
    for (const bool whole : {true, false})
        EXPECT_THROW(exportToFile("/out.xml", all_fields, whole ? nullptr : &selection), std::runtime_error);
    EXPECT_TRUE(player.local_files.files.empty());

    player.local_files.files["/out.xml"] = "older";
    player.shut_down();
    EXPECT_THROW(exportToFile("/out.xml", all_fields, nullptr), std::runtime_error);
    EXPECT_EQ(player.local_files.files.at("/out.xml"), "older");
}

constexpr std::uint64_t key = 0xABCDE;

std::string entry_of(const t_playback_stats& record, std::uint32_t fields,
                     const quorvel::pcdb_export::track_list* items = nullptr) {
    std::string out = "before";
    const bool written = writeEntry(out, key, record, fields, items);
    EXPECT_EQ(written, out != "before");
    return out.substr(6);
}

TEST(entry_writer, writes_the_selected_fields_that_are_set) {
    constexpr std::uint64_t earlier = 133'500'000'000'000'000;
    const auto entry = [](const std::string& fields) { return "  <Entry ID=\"00000000000abcde\" " + fields + "/>\n"; };
    const std::string first = R"(FirstPlayed="133541244480000000" FirstPlayedFriendly="2024-03-05 20:30:48" )";
    const std::string last = R"(LastPlayed="133541244490000000" LastPlayedFriendly="2024-03-05 20:30:49" )";
    const std::string added = R"(Added="133500000000000000" AddedFriendly="2024-01-18 02:50:00" )";
    const t_playback_stats all{
        .play_count = 12, .first_played = moment, .last_played = moment + second, .added = earlier, .rating = 149};
    struct {
        t_playback_stats record;
        std::uint32_t fields;
        std::string expected;
    } const rows[] = {
        {all, 31, entry("Count=\"12\" " + first + last + added + "Rating=\"149\" RatingFriendly=\"3\" ")},
        {all, 0, ""},
        {all, quorvel::field_first_played, entry(first)},
        {all, quorvel::field_last_played, entry(last)},
        {all, quorvel::field_added, entry(added)},
        {{}, 31, entry("Count=\"0\" ")},
        {{}, 30, ""},
        {{.play_count = ~0ULL, .first_played = ~0ULL, .last_played = 1ULL << 63, .added = ~0ULL, .rating = 0xFFFFFFFE},
         31,
         entry("Count=\"18446744073709551615\" FirstPlayed=\"18446744073709551615\" LastPlayed=\"9223372036854775808\" "
               "Added=\"18446744073709551615\" Rating=\"4294967294\" RatingFriendly=\"-1\" ")},
    };
    for (const auto& [record, fields, expected] : rows) EXPECT_EQ(entry_of(record, fields), expected);
}

/// Rounded in double precision, half of them to even: some of these texts differ when it is done in another way.
TEST(entry_writer, writes_ratings_as_stars_and_tenths) {
    const std::pair<std::uint32_t, const char*> rows[] = {
        {0, "0.-5"}, {2, "0.-5"}, {19, "0.-1"}, {20, "0"},    {21, "0"},  {32, "0.3"},  {43, "0.5"}, {64, "1"},
        {96, "1.8"}, {149, "3"},  {160, "3.2"}, {224, "4.8"}, {234, "5"}, {255, "5.5"}, {256, "-1"}, {0x80000000, "-1"},
    };
    for (const auto& [rating, stars] : rows)
        EXPECT_EQ(entry_of({.rating = rating}, quorvel::field_rating), "  <Entry ID=\"00000000000abcde\" Rating=\"" +
                                                                           std::to_string(rating) + "\" RatingFriendly=\"" +
                                                                           stars + "\" />\n");
}

TEST(entry_writer, lists_the_tracks_by_path_and_subsong) {
    ostrevan::metadb_handle_list items;
    const auto add = [&](const char* path, std::uint32_t subsong) {
        items.items().push_back(ostrevan::service_new<support::memory_track>(ostrevan::playable_location{path, subsong}));
    };
    add("/music/Rock & Roll/\"'<>\n\xC3\xA9.flac", 0);
    add("FiLe:///a.cue", 4294967295);
    add("file://file://b", 0);
    add("files://c", 0);
    add("http://host/d", 7);
    add("file:/", 0);
    EXPECT_EQ(entry_of({}, 1, &items),
              "  <Entry ID=\"00000000000abcde\" Count=\"0\" >\n"
              "<Item Path=\"/music/Rock &amp; Roll/&quot;&apos;&lt;&gt;\n\xC3\xA9.flac\"></Item>"
              "<Item Path=\"/a.cue\" Subsong=\"4294967295\"></Item>"
              "<Item Path=\"file://b\"></Item>"
              "<Item Path=\"files://c\"></Item>"
              "<Item Path=\"http://host/d\" Subsong=\"7\"></Item>"
              "<Item Path=\"file:/\"></Item>"
              "  </Entry>\n");
    EXPECT_EQ(entry_of({}, 2, &items), "");
    const ostrevan::metadb_handle_list none;
    EXPECT_EQ(entry_of({}, 1, &none), "  <Entry ID=\"00000000000abcde\" Count=\"0\" />\n");
}

}  // namespace
