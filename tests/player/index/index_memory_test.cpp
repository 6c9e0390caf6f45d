#include "player/index/index_memory.h"

#include "tests/player/index/records.h"

namespace ostrevan::indexing {
namespace {

TEST(index_memory, keeps_what_was_written_while_older_rows_were_being_loaded) {
    const catalog_entry entry{.id = 3, .guid = plays, .retention = {}};
    index_memory memory(std::span(&entry, 1));
    record_bytes buffer(40);
    const auto read = [&](std::uint64_t key) { return memory.read(plays, key, buffer.data(), buffer.size()); };
    change_list written, rows;
    written.put(1, record_of(1, 2));
    memory.apply(3, written);
    EXPECT_EQ(read(1).ask_index, 0);
    EXPECT_EQ(read(2).ask_index, 3);

    for (const std::uint64_t key : {1, 2}) rows.put(key, record_of(key, 1));
    memory.add_loaded(3, rows);
    memory.finish_loading();
    for (const auto& [key, version] : {std::pair(1U, 2U), std::pair(2U, 1U)}) {
        ASSERT_EQ(read(key).size, 40U);
        EXPECT_EQ(buffer, record_of(key, version));
    }
    EXPECT_EQ(read(4).ask_index, 0);
    EXPECT_EQ(memory.keys(plays), (std::vector<std::uint64_t>{1, 2}));
}

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
}  // namespace ostrevan::indexing
