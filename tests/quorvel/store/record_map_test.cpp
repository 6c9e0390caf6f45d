#include "quorvel/store/record_map.h"

#include <gtest/gtest.h>

namespace {

TEST(record_map, finds_records_whatever_the_order_of_their_keys) {
    std::vector<std::uint64_t> orders[] = {
        {1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 9, 3, 4, 5, 8, 7, 6}, {9, 1}, {5, 6, 7, 8, 4}, {0, ~0ULL, 1}, {}};
    for (std::uint64_t i = 5000; i > 0; --i) orders[5].push_back(i << 32);
    for (const auto& keys : orders) {
        quorvel::record_map map;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            ASSERT_EQ(map.find(keys[i]), nullptr);
            map.set(keys[i], {.play_count = keys[i]});
            map.set(keys[i / 2], {.play_count = keys[i / 2] + 1});
        }
        for (std::size_t i = 0; i < keys.size(); ++i) {
            ASSERT_NE(map.find(keys[i]), nullptr);
            ASSERT_EQ(map.find(keys[i])->play_count, keys[i] + (i <= (keys.size() - 1) / 2 ? 1 : 0));
        }
        EXPECT_EQ(map.find(77), nullptr);
        EXPECT_EQ(map.keys(), keys);
    }
}

}  // namespace
