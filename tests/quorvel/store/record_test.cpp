#include "quorvel/store/record.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quorvel/store/merge.h"
#include "quorvel/store/record_editing.h"
#include "quorvel/store/record_map.h"

using namespace quorvel;

TEST(record, is_stored_little_endian_in_the_order_of_its_fields) {
    const t_playback_stats record{0x0102030405060708, 0x1112131415161718, 0x2122232425262728,
                                  0x3132333435363738, 0x41424344,         0x51525354};
    const auto blob = encode_record(record);
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(blob.data()), blob.size()),
              "\x08\7\6\5\4\3\2\1\x18\x17\x16\x15\x14\x13\x12\x11('&%$#\"!87654321DCBATSRQ");
    EXPECT_EQ(decode_record(blob), record);
    EXPECT_EQ(decode_record(blob).trailing, record.trailing);
    EXPECT_EQ((t_playback_stats{0, 0, 0, 0, 0xFFFFFFFF, 1}), t_playback_stats{}) << "the last bytes mean nothing";
}

TEST(record, shows_the_stars_of_its_rating) {
    struct {
        std::uint32_t rating, stars;
    } const cases[] = {{0, 0},   {42, 0},  {43, 1},  {85, 1},  {86, 2},  {127, 2}, {128, 3},
                       {170, 3}, {171, 4}, {213, 4}, {214, 5}, {255, 5}, {300, 5}};
    for (const auto& [rating, stars] : cases) {
        EXPECT_EQ(stars_of(rating), stars) << rating;
        EXPECT_EQ(stars_of_wrapping(rating), stars) << rating;
    }
    EXPECT_EQ(stars_of(0x2AAAAAAB), 5U);
    EXPECT_EQ(stars_of_wrapping(0x2AAAAAAB), 0U) << "the product has wrapped";

    const std::vector<std::uint32_t> written{21, 63, 106, 149, 191, 234};
    for (std::uint32_t stars = 0; stars < written.size(); ++stars) EXPECT_EQ(rating_of_stars(stars), written[stars]);
}

TEST(merge, combines_field_by_field) {
    const auto none = rating_not_set;
    const t_playback_stats stored{3, 20, 30, 40, 149, 7};
    struct {
        MergeType type;
        t_playback_stats stored, incoming, expected;
    } const cases[] = {
        {MergeType::Overwrite, stored, {4, 1, 2, 3, 5}, {4, 1, 2, 3, 5}},
        {MergeType::Overwrite, stored, {}, {}},
        {MergeType::MergeMax, stored, {4, 10, 50, 60, 234}, {4, 10, 50, 40, 191}},
        {MergeType::MergeSum, stored, {4, 30, 10, 30, 234}, {7, 20, 30, 30, 191}},
        {MergeType::MergeMax, stored, {}, stored},
        {MergeType::MergeSum, {}, stored, stored},
        {MergeType::MergeMax, {2, 0, 0, 0, none}, {1, 5, 6, 7, 0}, {2, 5, 6, 7, 0}},
        {MergeType::MergeSum, {~0ULL, 0, 0, 0, 0xFFFFFFFE}, {2, 0, 0, 0, 4}, {1, 0, 0, 0, 1}},
    };
    ostrevan::service_uncounted_t<record_editing> editing;
    for (const auto& c : cases) {
        const auto result = merged(c.stored, c.incoming, c.type);
        EXPECT_EQ(result, c.expected) << &c - cases;
        EXPECT_EQ(result.trailing, c.stored.trailing) << &c - cases;
        if (c.type != MergeType::MergeMax) continue;
        const auto into = encode_record(c.stored), from = encode_record(c.incoming), both = encode_record(result);
        EXPECT_TRUE(std::ranges::equal(editing.merged(into, from), both)) << "by the player, " << &c - cases;
    }
}

TEST(record_map, finds_records_whatever_the_order_of_their_keys) {
    std::vector<std::uint64_t> orders[] = {
        {1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 9, 3, 4, 5, 8, 7, 6}, {9, 1}, {5, 6, 7, 8, 4}, {0, ~0ULL, 1}, {}};
    for (std::uint64_t i = 5000; i > 0; --i) orders[5].push_back(i << 32);
    for (const auto& keys : orders) {
        record_map map;
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
