#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "player/services/hash_service.h"
#include "player/services/text_helper_service.h"

namespace ostrevan::services {
namespace {

TEST(digest, is_that_of_any_length_at_once_and_piece_by_piece) {
    const std::string million(1'000'000, 'a');
    // The last of the algorithm's published test vectors that is longer than any buffer.
    const hash_digest wanted{0x77, 0x07, 0xD6, 0xAE, 0x4E, 0x02, 0x7C, 0x70, 0xEE, 0xA2, 0xA9, 0x35, 0xC2, 0x29, 0x6F, 0x21};
    service_uncounted_t<hash_service_impl> hash;
    EXPECT_EQ(hash.digest(million.data(), million.size()), wanted);
    const auto first = hash.open(), second = hash.open();
    for (std::size_t done = 0; done < million.size(); done += 257) {
        first->update(million.data() + done, std::min<std::size_t>(257, million.size() - done));
        second->update("x", 1);
    }
    EXPECT_EQ(first->finish(), wanted);
    EXPECT_NE(second->finish(), wanted);
}

TEST(lower_casing, is_the_simple_one_in_the_table_and_beyond) {
    service_uncounted_t<text_helper_service_impl> text;
    constexpr std::pair<std::uint32_t, std::uint32_t> cases[] = {
        {'A', 'a'},         {'z', 'z'},         {0xC9, 0xE9},         {0x130, 'i'},
        {0x3A3, 0x3C3},     {0x1E9E, 0xDF},     {0x212A, 'k'},        {0x2C2F, 0x2C5F},
        {0x2FFF, 0x2FFF},   {0x3000, 0x3000},   {0xA640, 0xA641},     {0xFF21, 0xFF41},
        {0x10400, 0x10428}, {0x1E921, 0x1E943}, {0x10FFFF, 0x10FFFF}, {0xFFFFFFFF, 0xFFFFFFFF}};
    for (const auto& [upper, lower] : cases) {
        EXPECT_EQ(text.lower(upper), lower) << std::hex << upper;
        EXPECT_TRUE(upper >= text_helper_service::lower_table_size || text.lower_table()[upper] == lower) << upper;
    }
}

}  // namespace
}  // namespace ostrevan::services
