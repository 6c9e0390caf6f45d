#include "player/query/sort.h"

#include <gtest/gtest.h>

#include "tests/player/titleformat/fields.h"

namespace ostrevan::query {
namespace {

TEST(sort, order_is_the_one_a_reader_expects) {
    const std::string long_number(257, '1'), longer_number(258, '1');
    const std::vector<std::string> ascending = {"",           "(x)",        "0",         "1 b",         "2",     "10",
                                                "1999-12-31", "2000-01-01", long_number, longer_number, "a 2 9", "A 2 10",
                                                "a 10",       "ab",         "B",         "été"};
    for (std::size_t i = 0; i < ascending.size(); ++i)
        for (std::size_t j = 0; j < ascending.size(); ++j)
            EXPECT_EQ(sort_key_less(ascending[i], ascending[j]), i < j) << ascending[i] << " | " << ascending[j];
    EXPECT_EQ(natural_key("Track 007 É"), natural_key("track 7 é"));
}

TEST(sort, equal_entries_keep_their_order_and_absent_ones_come_last_in_both_directions) {
    const std::vector<sort_entry> entries = {{0, "b"}, {1, "A"}, {2, "N/A", true}, {3, "a"}, {4, "N/A", true}, {5, "B"}};
    const auto order = [&](bool descending) {
        auto sorted = entries;
        sort_naturally(sorted, descending);
        std::string indices;
        for (const auto& entry : sorted) indices += std::to_string(entry.index);
        return indices;
    };
    EXPECT_EQ(order(false), "130524");
    EXPECT_EQ(order(true), "051324");
}

TEST(sort, never_played_tracks_have_a_count_to_sort_by_but_no_time) {
    const titleformat::table_of_fields never({}, {{"play_count", "0"}, {"last_played", "N/A"}});
    EXPECT_EQ(entry_of(*parse("SORT BY %play_count%").sort(), 3, never).text, "0");
    EXPECT_FALSE(entry_of(*parse("SORT BY %play_count%").sort(), 3, never).absent);
    EXPECT_TRUE(entry_of(*parse("SORT BY %last_played%").sort(), 3, never).absent);
}

TEST(sort, goes_by_the_number_behind_a_field_when_the_field_is_all_there_is) {
    titleformat::table_of_fields track({{"last_played", "2026-10-25 02:30:00"}}, {});
    track.moments["last_played"] = 0;
    const auto by_time = *parse("SORT BY %last_played%").sort();
    EXPECT_TRUE(entry_of(by_time, 0, track).absent);
    track.moments["last_played"] = 134'067'546'000'000'000;
    EXPECT_EQ(entry_of(by_time, 0, track).text, "134067546000000000");
    EXPECT_EQ(entry_of(*parse("SORT BY $left(%last_played%,10)").sort(), 0, track).text, "2026-10-25");
}

}  // namespace
}  // namespace ostrevan::query
