#include <fstream>

#include "ostrevan/exceptions.h"
#include "quorvel/interchange/export_fields.h"
#include "quorvel/interchange/pcdb_export.h"
#include "tests/support/statistics_test.h"

namespace {

using quorvel::export_all_fields;
using quorvel::pcdb_export::exportToFile;

const std::string head = "<PlaybackStatistics Version=\"3.0\" Mapping=\"C653739F-14B3-4EF2-819B-A3E2883230AE\">\n";

std::string golden(const std::string& name) {
    std::ifstream file(std::string(GOLDEN_FOLDER) + "/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

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
    EXPECT_EQ(exported(export_all_fields, nullptr), golden("full_backup.xml"));
    EXPECT_EQ(player.local_files.flushes, 1U) << "a finished backup is on the disk";
    player.withdraw(player.library.class_guid);
    EXPECT_EQ(exported(quorvel::export_rating, nullptr), golden("ratings_without_library.xml"));
}

TEST_F(exporter, writes_a_selection_in_its_order_each_record_once) {
    const auto unread = support::make_track("/unread.flac", {{"title", "Unread"}});
    unread->forget_info();
    const ostrevan::metadb_handle_list selection{gulls, copy, unread, ferry};
    EXPECT_EQ(exported(export_all_fields, &selection), golden("selection.xml"));
    const ostrevan::metadb_handle_list reversed{ferry, gulls};
    const auto text = exported(quorvel::export_play_count, &reversed);
    EXPECT_LT(text.find("First Ferry"), text.find("gulls"));
    const ostrevan::metadb_handle_list none;
    EXPECT_EQ(exported(export_all_fields, &none), head + "</PlaybackStatistics>");
}

TEST_F(exporter, goes_through_an_index_of_any_size_in_portions) {
    constexpr std::uint64_t count = 2 * 4'096 - 2;  // with two that are there already; the last portion is full
    const auto blob = quorvel::encode_record({.play_count = 3});
    for (std::uint64_t i = 0; i < count; ++i)
        player.index.write(quorvel::statistics_index_guid, ~i, blob.data(), blob.size());
    const auto text = exported(quorvel::export_play_count, nullptr);
    EXPECT_EQ(std::ranges::count(text, '\n'), count + 1 + 3) << "a line an entry, two for the one with tracks";
    EXPECT_NE(text.find("\"ffffffffffffffff\""), std::string::npos);
    EXPECT_LT(player.local_files.largest_write, 17'000U);
    EXPECT_EQ(player.progress.started, std::vector<std::string>{"records exported"});
    EXPECT_FALSE(player.progress.steps.empty());
}

TEST_F(exporter, leaves_what_has_been_written_when_it_fails) {
    player.local_files.room = 100;
    EXPECT_THROW(exportToFile("/out.xml", export_all_fields, nullptr), ostrevan_io::exception_io_system);
    EXPECT_EQ(player.local_files.files.at("/out.xml"), golden("full_backup.xml").substr(0, 100));
    EXPECT_THROW(exportToFile("/", export_all_fields, nullptr), ostrevan_io::exception_io_denied);
}

TEST_F(exporter, writes_no_defaults_for_records_that_cannot_be_read) {
    const ostrevan::metadb_handle_list selection{ferry};
    player.index.fail_read = true;
    for (const bool whole : {true, false})
        EXPECT_THROW(exportToFile("/out.xml", export_all_fields, whole ? nullptr : &selection), std::runtime_error);
    EXPECT_EQ(player.local_files.files.at("/out.xml").find("Entry"), std::string::npos);
}

TEST_F(exporter, touches_nothing_without_an_index) {
    player.local_files.files["/out.xml"] = "older";
    player.shut_down();
    EXPECT_THROW(exportToFile("/out.xml", export_all_fields, nullptr), std::runtime_error);
    EXPECT_EQ(player.local_files.files.at("/out.xml"), "older");
}

}  // namespace
