#include "bench/bare_rows.h"

#include <algorithm>
#include <bit>

#include "player/sqlite/database.h"

namespace bench {

void write_sorted_rows(const std::filesystem::path& path, std::span<keyed_record> records) {
    const auto column_of = [](const keyed_record& each) { return std::bit_cast<std::int64_t>(each.first); };
    std::ranges::sort(records, {}, column_of);
    const ostrevan::sqlite::format format{.application_id = 1,
                                          .version = 1,
                                          .schema = "CREATE TABLE records (key INTEGER PRIMARY KEY, data BLOB)",
                                          .contents = "bare"};
    ostrevan::sqlite::database database(path.string(), format);
    ostrevan::sqlite::transaction transaction(database);
    auto row = database.prepare("INSERT INTO records VALUES (?, ?)");
    for (const auto& record : records) row.bind(1, column_of(record)).bind(2, record.second).run();
    transaction.commit();
}

}  // namespace bench
