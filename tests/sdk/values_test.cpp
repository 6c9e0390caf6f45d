#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "nuv/guid.h"
#include "ostrevan/file_info_builder.h"

namespace ostrevan {
namespace {

TEST(file_info, finds_names_without_regard_to_ascii_case_only) {
    file_info_builder fields;
    const char* const names[] = {"Album Artist", "ALBUM ARTISTS", "größe", "last_played_timestamp", "@bc", "bpm"};
    for (const auto* name : names) fields.meta_set(name, "");
    const auto info = fields.build();
    for (const auto& [name, index] : {std::pair("album artist", 0U), {"album artists", 1}, {"GRößE", 2}, {"BPM", 5}}) {
        EXPECT_EQ(info.meta_find(name), index);
        EXPECT_EQ(fields.meta_find(name), index);
    }
    for (const auto* name : {"GRÖSSE", "album", "last_playeX_timestamp", "`bc", "pbm"})
        EXPECT_FALSE(info.meta_exists(name)) << name;
}

TEST(file_info_builder, keeps_order_and_values_through_edits) {
    file_info_builder info;
    info.meta_add("artist", "one");
    info.meta_add("ARTIST", "two");
    info.meta_set_values("empty", {});
    info.meta_set("title", "t");
    ASSERT_EQ(info.meta_count(), 3U);
    EXPECT_EQ(info.meta_values(0), (std::vector<std::string>{"one", "two"}));
    info.meta_set("artist", "three");
    EXPECT_EQ(info.meta_values(0), std::vector<std::string>{"three"});
    EXPECT_TRUE(info.meta_remove_field("ARTIST"));
    EXPECT_FALSE(info.meta_remove_field("artist"));
    EXPECT_EQ(info.meta_name(1), "title");
}

TEST(file_info, holds_what_was_built_and_refuses_every_damage_that_could_be_followed_outside) {
    file_info_builder fields;
    fields.length = 241.0 + 1.0 / 3.0;
    fields.codec = "FLAC";
    fields.bitrate = 900;
    fields.sample_rate = 192'000;
    fields.channels = 2;
    EXPECT_EQ(fields.build().codec(), "FLAC");
    fields.meta_set_values("title", {"Zażółć", ""});
    fields.meta_set_values("empty", {});
    // The second has offsets of four bytes.
    for (const std::size_t long_text : {300, 70'000}) {
        fields.meta_set("Comment", std::string(long_text, 'x') + std::string("\0\xFF", 2));
        const auto info = fields.build();
        const file_info same = *file_info::from_bytes(info.bytes());
        EXPECT_EQ(same, info);
        EXPECT_EQ(std::tuple(same.length(), same.codec(), same.bitrate(), same.sample_rate(), same.channels()),
                  std::tuple(241.0 + 1.0 / 3.0, "FLAC", 900, 192'000, 2));
        EXPECT_EQ(same.meta_value(0, 0), "Zażółć");
        EXPECT_EQ(same.meta_value(0, 1), "");
        EXPECT_EQ(same.meta_value_count(1), 0U);
        EXPECT_EQ(same.meta_value(2, 0).size(), long_text + 2);
        EXPECT_EQ(file_info_builder(same).build().bytes(), info.bytes());
        fields.channels = 6;
        EXPECT_NE(fields.build(), same);
        fields.channels = 2;

        const std::string whole(info.bytes());
        EXPECT_FALSE(file_info::from_bytes(whole + '\0'));
        for (std::size_t i = 0; i < 120; ++i) {
            EXPECT_FALSE(file_info::from_bytes(whole.substr(0, i)));
            std::string changed = whole;
            changed[i] ^= '\x41';
            const auto read = file_info::from_bytes(changed);
            // The sound, and the bytes of texts, may be anything.
            const bool is_structure = i < 8 || (i >= 28 && i < (long_text > 65'535 ? 51 : 43));
            EXPECT_FALSE(read && is_structure && i != 2 && i != 3) << i;
            for (std::size_t field = 0; read && field < read->meta_count(); ++field)
                for (const auto value : read->meta_values(field)) EXPECT_LE(value.size(), whole.size());
        }
    }
    EXPECT_EQ(*file_info::from_bytes(file_info().bytes()), file_info_builder().build());
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
