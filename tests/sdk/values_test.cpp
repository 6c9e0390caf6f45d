#include <gtest/gtest.h>

#include <cstring>

#include "nuv/guid.h"
#include "ostrevan/file_info.h"

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
    auto other = info;
    other.sample_rate = 8000;
    EXPECT_NE(info, other);
}

TEST(guid, reads_and_prints_the_usual_text) {
    constexpr auto parsed = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
    EXPECT_EQ(nuv::guid_text(parsed), "C653739F-14B3-4EF2-819B-A3E2883230AE");
    EXPECT_EQ(nuv::parse_guid("c653739f-14b3-4ef2-819b-a3e2883230ae"), parsed);
}

TEST(guid, refuses_anything_else) {
    for (const char* text : {"", "C653739F", "{C653739F-14B3-4EF2-819B-A3E2883230AE", "C653739F-14B3-4EF2-819BA-3E2883230AE",
                             "G653739F-14B3-4EF2-819B-A3E2883230AE", "{C653739F-14B3-4EF2-819B-A3E2883230AE}x"})
        EXPECT_FALSE(nuv::parse_guid(text)) << text;
}

// Stored files hold GUIDs as they stand in memory.
TEST(guid, stands_in_memory_as_sixteen_bytes_in_binary_order) {
    constexpr auto value = nuv::guid_of("{22A7D447-DA5C-42F5-9E1A-5DD9DE85A812}");
    const unsigned char expected[] = {0x47, 0xD4, 0xA7, 0x22, 0x5C, 0xDA, 0xF5, 0x42,
                                      0x9E, 0x1A, 0x5D, 0xD9, 0xDE, 0x85, 0xA8, 0x12};
    EXPECT_EQ(std::memcmp(&value, expected, sizeof expected), 0);
}

}  // namespace
}  // namespace ostrevan
