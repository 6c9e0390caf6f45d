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

}  // namespace
}  // namespace ostrevan::indexing
