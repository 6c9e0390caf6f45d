#include "player/history/restore.h"

#include <sqlite3.h>

#include <chrono>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

#include "player/index/index_database.h"
#include "player/sqlite/reading_copy.h"

namespace ostrevan::history {
namespace {

using records_by_key = std::map<std::uint64_t, std::vector<std::byte>>;

std::map<nuv::guid, records_by_key> records_in(const std::string& file) {
    index::index_database database(file, std::chrono::seconds(1));
    if (!database.is_whole()) throw sqlite::error(SQLITE_CORRUPT, file);
    std::map<std::int64_t, nuv::guid> guids;
    for (const auto& each : database.catalog()) guids.emplace(each.id, each.guid);
    std::map<nuv::guid, records_by_key> all;
    database.load([&](std::int64_t index_id, const index::change_list& rows) {
        auto& records = all[guids.at(index_id)];
        for (const auto& row : rows.changes()) {
            const auto data = *rows.data(row);
            records.emplace_hint(records.end(), row.key, std::vector(data.begin(), data.end()));
        }
        return true;
    });
    return all;
}

/// Opening a database may upgrade its format, so this opens a temporary copy of the copy.
std::map<nuv::guid, records_by_key> read_copy(const std::filesystem::path& copy) {
    const auto read = sqlite::reading_copy::of(copy.string());
    if (!read)
        throw std::runtime_error(copy.string() + " cannot be read, or there is no room for it in the temporary folder.");
    try {
        return records_in(read->file());
    } catch (const sqlite::error& error) {
        const int kind = error.code() & 0xFF;
        throw std::runtime_error(copy.string() +
                                 (kind == SQLITE_CORRUPT  ? " is damaged"
                                  : kind == SQLITE_NOTADB ? " is no copy that this version can read"
                                                          : " cannot be read") +
                                 ". Restore another copy.");
    }
}

std::vector<index::index_changes> differences(const index::index_store& records,
                                              std::map<nuv::guid, records_by_key> wanted) {
    for (const auto& index : records.indexes()) wanted[index];
    std::vector<index::index_changes> all;
    for (auto& [index, in_copy] : wanted) {
        index::index_changes changes{index, {}};
        for (const auto key : records.keys(index))
            if (!in_copy.contains(key)) changes.records.push_back({key, records.record(index, key), std::nullopt});
        for (auto& [key, data] : in_copy)
            if (auto now = records.record(index, key); now != data)
                changes.records.push_back({key, std::move(now), std::move(data)});
        if (!changes.records.empty()) all.push_back(std::move(changes));
    }
    return all;
}

}  // namespace

std::vector<index::index_changes> from_copy(const index::index_store& records, const std::filesystem::path& copy) {
    return differences(records, read_copy(copy));
}

restored restore(index::index_store& records, const std::filesystem::path& copy) {
    auto wanted = read_copy(copy);
    auto transaction = records.begin();
    restored done{.changes = differences(records, std::move(wanted))};
    for (const auto& [index, changed] : done.changes)
        for (const auto& each : changed)
            transaction.write(index, each.key,
                              each.after ? std::span<const std::byte>(*each.after) : std::span<const std::byte>());
    if (!done.changes.empty()) done.act = transaction.commit();
    records.flush();
    return done;
}

}  // namespace ostrevan::history
