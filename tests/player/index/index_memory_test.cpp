#include "player/index/index_memory.h"

#include "tests/player/index/records.h"

namespace ostrevan::index {
namespace {

TEST(index_memory, gives_its_keys_in_portions) {
    const catalog_entry entry{.id = 3, .guid = plays, .retention = {}};
    index_memory memory(std::span(&entry, 1));
    change_list written;
    std::vector<std::uint64_t> all;
    for (std::uint64_t i = 0; i < 500; ++i) all.insert(all.end(), {i, i << 55, ~i, (i << 55) + 1 + i});
    for (const std::uint64_t key : all) written.put(key, record_of(key));
    memory.apply(3, written);
    std::ranges::sort(all);
    all.erase(std::ranges::unique(all).begin(), all.end());
    EXPECT_EQ(memory.keys(plays), all);
    for (const std::size_t at_most : {1U, 2U, 300U, 5000U}) {
        std::vector<std::uint64_t> walked;
        for (std::vector<std::uint64_t> part;
             !(part = memory.keys_from(plays, walked.empty() ? 0 : walked.back() + 1, at_most)).empty();) {
            EXPECT_LE(part.size(), at_most);
            walked.insert(walked.end(), part.begin(), part.end());
            if (walked.back() + 1 == 0) break;
        }
        EXPECT_EQ(walked, all) << at_most;
    }
}

}  // namespace
}  // namespace ostrevan::index
