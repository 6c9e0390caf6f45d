#include "player/index/successors.h"

#include <gtest/gtest.h>

#include <set>

namespace ostrevan::index {
namespace {

TEST(successors, are_followed_to_the_wanted_key_and_back_through_circles_and_at_most_64_steps) {
    struct {
        const char* what;
        std::vector<std::pair<std::uint64_t, std::uint64_t>> edits;
        std::uint64_t key, wanted;
        std::optional<std::uint64_t> found;
        std::set<std::uint64_t> leading_to_wanted;
    } const cases[] = {
        {"itself", {{1, 2}}, 1, 1, 1, {1}},
        {"two edits", {{1, 2}, {2, 3}}, 1, 3, 3, {1, 2, 3}},
        {"not back", {{1, 2}}, 2, 1, std::nullopt, {1}},
        {"its former tags again", {{1, 2}, {2, 1}}, 2, 1, 1, {1, 2}},
        {"a circle elsewhere", {{1, 2}, {2, 1}}, 1, 3, std::nullopt, {3}},
        {"two become one", {{1, 3}, {2, 3}}, 2, 3, 3, {1, 2, 3}},
    };
    for (const auto& each : cases) {
        successors all;
        for (const auto& [from, to] : each.edits) all.add(from, to);
        EXPECT_EQ(all.first_of(each.key, [&](std::uint64_t key) { return key == each.wanted; }), each.found) << each.what;
        const auto leading = all.leading_to(each.wanted);
        EXPECT_EQ(leading.front(), each.wanted) << each.what;
        EXPECT_EQ(std::set(leading.begin(), leading.end()), each.leading_to_wanted) << each.what;
    }
    successors chain;
    for (std::uint64_t key = 0; key < 100; ++key) chain.add(key, key + 1);
    EXPECT_TRUE(chain.first_of(36, [](std::uint64_t key) { return key == 100; }));
    EXPECT_FALSE(chain.first_of(35, [](std::uint64_t key) { return key == 100; }));
    EXPECT_EQ(chain.leading_to(100).back(), 36U);
}

}  // namespace
}  // namespace ostrevan::index
