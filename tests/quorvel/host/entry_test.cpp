#include "ostrevan/component.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/memory_player.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

TEST(entry, refuses_a_player_of_another_kind_or_version) {
    support::memory_player player;
    const ostrevan::player_interface wrong_magic{ostrevan::component_magic, ostrevan::interface_version, &player};
    const ostrevan::player_interface newer{ostrevan::player_magic, ostrevan::interface_version + 1, &player};
    for (const auto* block : {static_cast<const ostrevan::player_interface*>(nullptr), &wrong_magic, &newer})
        EXPECT_EQ(ostrevan_get_interface(block), nullptr);
}

#ifdef QUORVEL_MODULE_PATH
TEST(entry, module_exports_its_entry_and_nothing_else) {
    FILE* pipe = popen("nm -D --defined-only " QUORVEL_MODULE_PATH, "r");
    ASSERT_NE(pipe, nullptr);
    std::string listing(10'000, ' ');
    listing.resize(std::fread(listing.data(), 1, listing.size(), pipe));
    ASSERT_EQ(pclose(pipe), 0);
    EXPECT_NE(listing.find(" T ostrevan_get_interface\n"), std::string::npos) << listing;
    EXPECT_EQ(listing.find('\n'), listing.size() - 1) << "more than one symbol:\n" << listing;
}
#endif
