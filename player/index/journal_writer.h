#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "player/index/index_changes.h"
#include "player/sqlite/database.h"

namespace ostrevan::index {

/// The tables of the journal: which commit changed which record, from what to what; and what was listened to when.
inline constexpr const char* journal_schema = R"(
    CREATE TABLE operations (
        id INTEGER PRIMARY KEY,
        act INTEGER NOT NULL,
        time INTEGER NOT NULL,
        undoes INTEGER,
        cause TEXT NOT NULL
    ) STRICT;
    CREATE INDEX operations_by_act ON operations (act);
    CREATE TABLE changes (
        index_id INTEGER NOT NULL,
        key INTEGER NOT NULL,
        operation INTEGER NOT NULL,
        change BLOB NOT NULL,
        PRIMARY KEY (index_id, key, operation)
    ) STRICT, WITHOUT ROWID;
    CREATE INDEX changes_by_operation ON changes (operation);
    CREATE TABLE bulk_changes (
        operation INTEGER NOT NULL,
        index_id INTEGER NOT NULL,
        first_key INTEGER NOT NULL,
        last_key INTEGER NOT NULL,
        changes BLOB NOT NULL
    ) STRICT;
    CREATE INDEX bulk_changes_by_operation ON bulk_changes (operation);
    CREATE TABLE listens (
        id INTEGER PRIMARY KEY,
        time INTEGER NOT NULL,
        path TEXT NOT NULL,
        subsong INTEGER NOT NULL,
        seconds REAL NOT NULL,
        player TEXT NOT NULL,
        counted INTEGER NOT NULL,
        act INTEGER NOT NULL
    ) STRICT;
    CREATE TABLE listen_keys (
        index_id INTEGER NOT NULL,
        key INTEGER NOT NULL,
        listen INTEGER NOT NULL,
        PRIMARY KEY (index_id, key, listen)
    ) STRICT, WITHOUT ROWID;
)";

/// What the tracks of records are called.
inline constexpr const char* known_tracks_schema = R"(
    CREATE TABLE known_tracks (
        index_id INTEGER NOT NULL,
        key INTEGER NOT NULL,
        artist TEXT NOT NULL,
        album TEXT NOT NULL,
        title TEXT NOT NULL,
        path TEXT NOT NULL,
        subsong INTEGER NOT NULL,
        successor INTEGER,
        PRIMARY KEY (index_id, key)
    ) STRICT, WITHOUT ROWID;
)";

/// The number under which `changes` keeps the successors of the keys of an index.
constexpr std::int64_t successors_of(std::int64_t index_id) noexcept { return -index_id; }

/// Writes the journal, inside the transactions that save the records. Throws sqlite::error.
class journal_writer {
public:
    /// Changes of one commit that are kept one by one; of more, many share a row.
    static constexpr std::size_t most_single_changes = 256;

    explicit journal_writer(sqlite::database& database);

    void save(const operation_entry& entry);
    void save(const record_changes& changes);
    void save(const listen& heard);
    void save(const known_tracks& noted);
    /// Removes the oldest acts, except for the newest one, until none is older than `time` (seconds since 1970) and at most
    /// `bytes` of changes are left.
    void trim(std::int64_t time, std::int64_t bytes);

private:
    void forget_plays_taken_back(std::int64_t oldest_kept);
    void save_single(std::int64_t index_id, std::int64_t key, std::int64_t operation, std::span<const std::byte> change);
    void save_successor_change(const known_track& now, std::int64_t operation);

    sqlite::database& database_;
    sqlite::statement put_operation_;
    sqlite::statement put_change_;
    sqlite::statement put_bulk_;
};

}  // namespace ostrevan::index
