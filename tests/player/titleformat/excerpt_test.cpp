#include "player/titleformat/excerpt.h"

#include <gtest/gtest.h>

namespace ostrevan::titleformat {
namespace {

TEST(excerpt, caret_stands_under_the_place_as_a_terminal_shows_it) {
    const struct {
        std::string_view text;
        std::size_t position;
        std::string_view expected;
    } cases[] = {
        {"abc", 1, "\n  abc\n   ^"},     {"abc", 3, "\n  abc\n     ^"},         {"", 0, "\n  \n  ^"},
        {"é日x", 5, "\n  é日x\n     ^"}, {"e\u0301x", 3, "\n  e\u0301x\n   ^"}, {"a\n\x1B\xFFx", 4, "\n  a  ?x\n      ^"},
    };
    for (const auto& [text, position, expected] : cases) EXPECT_EQ(point_at(text, position), expected) << text;
}

TEST(excerpt, only_the_surroundings_of_a_place_in_a_long_text_are_shown) {
    const std::string before(1000, 'b'), after(1000, 'a');
    EXPECT_EQ(point_at(before + after, 1000),
              "\n  ..." + before.substr(0, 50) + after.substr(0, 50) + "...\n  " + std::string(53, ' ') + '^');
}

}  // namespace
}  // namespace ostrevan::titleformat
