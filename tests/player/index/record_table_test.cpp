#include "player/index/record_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace ostrevan::index {
namespace {

/// Keys that are likely to be adjacent, so that chains meet and wrap around the end of a shard.
std::vector<std::uint64_t> crowded_keys() {
    std::vector<std::uint64_t> keys;
    for (std::uint64_t i = 0; i < 600; ++i) keys.insert(keys.end(), {i, i << 48, ~i, i * 0x100000001ULL});
    return keys;
}

TEST(record_table, agrees_with_a_map_after_any_changes) {
    std::mt19937 random(1);
    const auto keys = crowded_keys();
    const std::array<std::size_t, 4> sizes{40, 40, 8, 0};
    record_table table;
    std::map<std::uint64_t, std::vector<std::byte>> expected;
    for (int round = 0; round < 60'000; ++round) {
        const std::uint64_t key = keys[random() % keys.size()];
        if (random() % 3 == 0) {
            table.erase(key);
            expected.erase(key);
        } else {
            const std::vector<std::byte> data(sizes[random() % sizes.size()], static_cast<std::byte>(random()));
            table.put(key, data);
            expected[key] = data;
        }
    }
    for (const std::uint64_t key : keys) {
        const auto found = table.find(key);
        const auto wanted = expected.find(key);
        ASSERT_EQ(found.data() != nullptr, wanted != expected.end()) << key;
        ASSERT_TRUE(found.data() == nullptr || std::ranges::equal(found, wanted->second)) << key;
    }
    std::vector<std::uint64_t> listed;
    for (std::size_t shard = 0; shard < record_table::shard_count(); ++shard) table.append_keys(shard, listed);
    std::ranges::sort(listed);
    EXPECT_TRUE(std::ranges::equal(listed, expected, {}, {}, [](const auto& each) { return each.first; }));
}

}  // namespace
}  // namespace ostrevan::index
