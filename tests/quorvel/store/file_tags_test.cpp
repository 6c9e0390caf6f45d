#include "quorvel/store/file_tags.h"

#include <gtest/gtest.h>

#include "quorvel/store/timestamp.h"
#include "tests/support/memory_tracks.h"

namespace {

using quorvel::rating_not_set;
using quorvel::t_playback_stats;
using support::make_info;

constexpr std::uint64_t max_64 = 18446744073709551615U;

TEST(file_tags, parse_the_digits_at_the_end) {
    const std::pair<const char*, std::uint64_t> rows[] = {{"0012", 12},
                                                          {"12x34", 34},
                                                          {"-5", 5},
                                                          {"3 ", 0},
                                                          {"", 0},
                                                          {"7\xC3", 0},
                                                          {" 8", 8},
                                                          {"18446744073709551615", max_64},
                                                          {"18446744073709551617", 1}};
    for (const auto& [text, number] : rows) EXPECT_EQ(quorvel::parse_trailing_digits(text), number) << text;
}

TEST(file_tags, write_exactly_what_is_set) {
    struct row {
        t_playback_stats record;
        ostrevan::file_info before;
        ostrevan::file_info after;
    };
    ostrevan::file_info_builder every_field(make_info({{"last_played", "x"}, {"first_played", "x"}, {"added", "x"}}));
    for (const auto* name : {"last_played_timestamp", "first_played_timestamp", "added_timestamp", "play_count",
                             "play_counter", "playback_counter", "rating"})
        every_field.meta_set(name, "1");
    const row rows[] = {
        {{}, make_info({{"TITLE", "t"}, {"PLAY_COUNTER", "7"}, {"Rating", "3"}}), make_info({{"TITLE", "t"}})},
        {{}, every_field.build(), make_info({{"last_played", "x"}, {"first_played", "x"}, {"added", "x"}})},
        {{.play_count = 5}, make_info({{"rating", "2"}}), make_info({{"play_count", "5"}})},
        {{.play_count = 5},
         make_info({{"play_count", "1"}, {"play_count", "2"}, {"title", "t"}}),
         make_info({{"title", "t"}, {"play_count", "5"}})},
        {{.play_count = max_64, .first_played = 2, .last_played = 3, .added = 1, .rating = 149},
         make_info({{"added_timestamp", "9"}, {"added_timestamp", "8"}}),
         make_info({{"added_timestamp", "1"},
                    {"last_played_timestamp", "3"},
                    {"first_played_timestamp", "2"},
                    {"play_count", "18446744073709551615"},
                    {"rating", "3"}})},
        {{.rating = 0}, make_info({}), make_info({{"rating", "0"}})},
        {{.rating = 214}, make_info({}), make_info({{"rating", "5"}})},
        {{.rating = 0x2AAAAAAB}, make_info({}), make_info({{"rating", "0"}})},  // times 6 wraps to 2
    };
    for (const auto& [record, before, after] : rows) {
        ostrevan::file_info_builder info(before);
        quorvel::PCDB_write_tags(record, info);
        EXPECT_EQ(info.build(), after) << "row " << &record - &rows[0].record;
    }
}

TEST(file_tags, read_what_is_there) {
    struct row {
        ostrevan::file_info info;
        t_playback_stats record;
        std::uint32_t present;
    };
    ostrevan::file_info_builder empty_fields;
    for (const char* name : {"play_count", "rating", "added_timestamp"}) empty_fields.meta_set_values(name, {});
    const std::vector<row> rows = {
        {make_info({}), {}, 0},
        {empty_fields.build(), {}, 0},
        {make_info({{"rating", "3"}}), {.rating = 149}, 16},
        {make_info({{"rating", "9"}}), {.rating = 234}, 16},
        {make_info({{"rating", ""}}), {.rating = 21}, 16},
        {make_info({{"rating", "4294967296"}}), {.rating = 234}, 16},
        {make_info({{"play_count", "abc"}, {"play_counter", "12"}}), {}, 1},
        {make_info({{"playback_counter", "3"}, {"play_counter", "12"}}), {.play_count = 12}, 1},
        {make_info({{"playback_counter", "3"}, {"playback_counter", "4"}}), {.play_count = 3}, 1},
        {make_info({{"last_played_timestamp", "9"}}), {.first_played = 9, .last_played = 9, .added = 9}, 14},
        {make_info({{"first_played_timestamp", "5"}, {"added_timestamp", "7"}}), {.first_played = 5, .added = 5}, 10},
        {make_info({{"first_played_timestamp", "5"}, {"added_timestamp", "4"}}), {.first_played = 5, .added = 4}, 10},
        {make_info({{"added_timestamp", "4"}}), {.added = 4}, 8},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        t_playback_stats record{.play_count = 77, .rating = 77};
        EXPECT_EQ(quorvel::PCDB_read_tags(record, rows[i].info, false), rows[i].present) << "row " << i;
        EXPECT_EQ(record, rows[i].record) << "row " << i;
    }
}

TEST(file_tags, read_times_as_text_only_when_allowed) {
    const std::string text = "2024-03-05 07:08:09";
    const std::uint64_t time = quorvel::ParseTimestamp(text);
    const std::pair<ostrevan::file_info, std::uint64_t> rows[] = {
        {make_info({{"added", text.c_str()}}), time},
        {make_info({{"added_timestamp", "0"}, {"added", text.c_str()}}), time},
        {make_info({{"added_timestamp", ""}, {"added", text.c_str()}}), time},
        {make_info({{"added_timestamp", "55"}, {"added", text.c_str()}}), 55},
        {make_info({{"added", "yesterday"}}), 0},
        {make_info({{"added", "2024-13-01 00:00:00"}}), 0},
    };
    for (const auto& [info, expected] : rows) {
        t_playback_stats record;
        EXPECT_EQ(quorvel::PCDB_read_tags(record, info, true), expected == 0 ? 0U : 8U);
        EXPECT_EQ(record.added, expected);
        quorvel::PCDB_read_tags(record, info, false);
        EXPECT_EQ(record.added, expected == 55 ? 55U : 0U);
    }
    const auto all = make_info(
        {{"last_played", "2024-03-05 07:08:11"}, {"first_played", "2024-03-05 07:08:10"}, {"added", text.c_str()}});
    t_playback_stats record;
    EXPECT_EQ(quorvel::PCDB_read_tags(record, all, true), 14U);
    EXPECT_EQ(record,
              (t_playback_stats{.first_played = time + 10'000'000, .last_played = time + 20'000'000, .added = time}));
}

}  // namespace
