#include "nuv/guid.h"

#include <gtest/gtest.h>

#include <cstring>

namespace nuv {
namespace {

TEST(guid, reads_and_prints_the_usual_text) {
    constexpr auto parsed = guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
    EXPECT_EQ(parsed.data1, 0xC653739FU);
    EXPECT_EQ(parsed.data3, 0x4EF2);
    EXPECT_EQ(parsed.data4[0], 0x81);
    EXPECT_EQ(guid_text(parsed), "C653739F-14B3-4EF2-819B-A3E2883230AE");
    EXPECT_EQ(parse_guid("c653739f-14b3-4ef2-819b-a3e2883230ae"), parsed);
}

TEST(guid, refuses_anything_else) {
    for (const char* text : {"", "C653739F", "{C653739F-14B3-4EF2-819B-A3E2883230AE", "C653739F-14B3-4EF2-819BA-3E2883230AE",
                             "G653739F-14B3-4EF2-819B-A3E2883230AE", "{C653739F-14B3-4EF2-819B-A3E2883230AE}x"})
        EXPECT_FALSE(parse_guid(text)) << text;
}

// Stored files hold GUIDs as they stand in memory.
TEST(guid, stands_in_memory_as_sixteen_bytes_in_binary_order) {
    static_assert(sizeof(guid) == 16);
    constexpr auto value = guid_of("{22A7D447-DA5C-42F5-9E1A-5DD9DE85A812}");
    const unsigned char expected[] = {0x47, 0xD4, 0xA7, 0x22, 0x5C, 0xDA, 0xF5, 0x42,
                                      0x9E, 0x1A, 0x5D, 0xD9, 0xDE, 0x85, 0xA8, 0x12};
    EXPECT_EQ(std::memcmp(&value, expected, sizeof expected), 0);
}

}  // namespace
}  // namespace nuv
