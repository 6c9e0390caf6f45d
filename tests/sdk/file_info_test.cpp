#include "ostrevan/file_info.h"

#include <gtest/gtest.h>

namespace ostrevan {
namespace {

TEST(file_info, finds_names_without_regard_to_ascii_case_only) {
    file_info info;
    info.meta_set("Album Artist", "A");
    info.meta_set("ALBUM ARTISTS", "B");
    info.meta_set("größe", "C");
    EXPECT_EQ(info.meta_find("album artist"), 0U);
    EXPECT_EQ(info.meta_find("album artists"), 1U);
    EXPECT_EQ(info.meta_find("GRößE"), 2U);
    EXPECT_EQ(info.meta_find("GRÖSSE"), file_info::npos);
    EXPECT_EQ(info.meta_find("album"), file_info::npos);
    EXPECT_EQ(info.meta_find(""), file_info::npos);
}

// Two names that agree in length, case bits and first bytes must still be told apart.
TEST(file_info, tells_names_apart_that_look_alike_to_a_quick_comparison) {
    file_info info;
    info.meta_set("last_played_timestamp", "1");
    EXPECT_FALSE(info.meta_exists("last_playeX_timestamp"));
    info.meta_set("@bc", "2");
    EXPECT_FALSE(info.meta_exists("`bc"));
}

TEST(file_info, keeps_order_and_values_through_edits) {
    file_info info;
    info.meta_add("artist", "one");
    info.meta_add("ARTIST", "two");
    info.meta_set_values("empty", {});
    info.meta_set("title", "t");
    ASSERT_EQ(info.meta_count(), 3U);
    EXPECT_EQ(info.meta_values(0), (std::vector<std::string>{"one", "two"}));
    EXPECT_TRUE(info.meta_exists("empty"));
    EXPECT_EQ(info.meta_value_count(1), 0U);

    info.meta_set("artist", "three");
    EXPECT_EQ(info.meta_values(0), std::vector<std::string>{"three"});
    EXPECT_TRUE(info.meta_remove_field("ARTIST"));
    EXPECT_FALSE(info.meta_remove_field("artist"));
    EXPECT_EQ(info.meta_name(1), "title");
}

}  // namespace
}  // namespace ostrevan
