#include "player/index/index_database.h"

#include <sqlite3.h>

#include <algorithm>
#include <bit>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "player/sqlite/backup.h"

namespace ostrevan::index {
namespace {

constexpr const char* upgrades[] = {"ALTER TABLE indexes ADD COLUMN owner TEXT", journal_schema, known_tracks_schema};

const std::string schema = std::string(R"(
    CREATE TABLE indexes (
        id INTEGER PRIMARY KEY,
        guid TEXT NOT NULL UNIQUE,
        retention INTEGER,
        owner TEXT
    ) STRICT;
    CREATE TABLE records (
        index_id INTEGER NOT NULL,
        key INTEGER NOT NULL,
        last_seen INTEGER NOT NULL,
        data BLOB NOT NULL,
        PRIMARY KEY (index_id, key)
    ) STRICT, WITHOUT ROWID;
)") + journal_schema + known_tracks_schema;

const sqlite::format format{
    .application_id = 0x4F737449,  // "OstI"
    .version = 4,
    .schema = schema.c_str(),
    .contents = "track index",
    .upgrades = upgrades,
};

/// The database knows signed numbers only; the bits are the same.
std::int64_t column_of(std::uint64_t key) noexcept { return std::bit_cast<std::int64_t>(key); }
std::uint64_t key_of(std::int64_t column) noexcept { return std::bit_cast<std::uint64_t>(column); }

/// Closing the last connection copies the write-ahead log into the database, unless told not to.
void checkpoint_on_close(sqlite::database& database, bool wanted) {
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, wanted ? 0 : 1, nullptr);
}

void prepare_connection(sqlite::database& database, std::chrono::milliseconds busy_timeout) {
    sqlite3_busy_timeout(database.handle(), static_cast<int>(busy_timeout.count()));
    checkpoint_on_close(database, false);
}

struct row {
    std::int64_t index_id;
    std::int64_t key;
    std::size_t order;
    const record_changes* changes;
    const change_list::change* change;
};

/// Batches often come sorted by unsigned key, which is two ascending runs of signed ones.
void sort_runs(std::vector<row>& rows, auto projection) {
    const auto second = std::ranges::is_sorted_until(rows, {}, projection);
    const auto third = std::ranges::is_sorted_until(second, rows.end(), {}, projection);
    if (third == rows.end()) std::ranges::inplace_merge(rows, second, {}, projection);
    else std::ranges::sort(rows, {}, projection);
}

/// The last change of every record, in table order, which is twice as fast to write as any other.
std::vector<row> final_rows(std::span<const index_job> jobs) {
    std::vector<row> rows;
    for (const index_job& job : jobs)
        if (const auto* changes = std::get_if<record_changes>(&job))
            for (const auto& change : changes->list.changes())
                rows.push_back({changes->index_id, column_of(change.key), rows.size(), changes, &change});
    sort_runs(rows, [](const row& each) { return std::tuple(each.index_id, each.key, ~each.order); });
    const auto repeated = std::ranges::unique(rows, {}, [](const row& each) { return std::pair(each.index_id, each.key); });
    rows.erase(repeated.begin(), repeated.end());
    return rows;
}

/// Rows per statement. Running one costs as much as a row or two: large batches take half the time.
constexpr std::size_t rows_of_block = 32;

std::string put_statement(std::size_t rows) {
    std::string sql = "INSERT INTO records (index_id, key, last_seen, data) VALUES ";
    for (std::size_t i = 0; i < rows; ++i) sql += i == 0 ? "(?, ?, ?, ?)" : ", (?, ?, ?, ?)";
    return sql + " ON CONFLICT (index_id, key) DO UPDATE SET last_seen = excluded.last_seen, data = excluded.data";
}

std::optional<std::span<const std::byte>> data_of(const row& of) { return of.changes->list.data(*of.change); }

void put(sqlite::statement& statement, std::span<const row> rows) {
    int first = 1;
    for (const row& each : rows) {
        statement.bind(first, each.index_id).bind(first + 1, each.key);
        statement.bind(first + 2, each.changes->seen).bind(first + 3, data_of(each).value());
        first += 4;
    }
    statement.run();
}

struct journal_damage {};

}  // namespace

const sqlite::format& index_format() noexcept { return format; }

index_database::index_database(const std::filesystem::path& path, std::chrono::milliseconds busy_timeout)
    : database_(path.string(), format),
      put_(database_.prepare(put_statement(1))),
      erase_(database_.prepare("DELETE FROM records WHERE index_id = ? AND key = ?")),
      journal_(database_) {
    prepare_connection(database_, busy_timeout);
    database_.execute("PRAGMA journal_size_limit = 16777216");
}

std::vector<catalog_entry> index_database::catalog() {
    std::vector<catalog_entry> entries;
    auto statement = database_.prepare("SELECT id, guid, retention, owner FROM indexes ORDER BY id");
    while (statement.step()) {
        const auto guid = nuv::parse_guid(statement.text(1));
        if (!guid) database_.fail(SQLITE_CORRUPT);
        catalog_entry entry{.id = statement.integer(0), .guid = *guid, .retention = {}};
        if (!statement.is_null(2)) entry.retention = static_cast<std::uint64_t>(statement.integer(2));
        entry.owner = statement.text(3);
        entries.push_back(std::move(entry));
    }
    return entries;
}

bool index_database::load(const std::function<bool(std::int64_t, const change_list&)>& visit) {
    constexpr std::size_t rows_at_once = 4096;
    change_list rows;
    for (const catalog_entry& entry : catalog()) {
        auto statement = database_.prepare("SELECT key, data FROM records WHERE index_id = ? ORDER BY key");
        statement.bind(1, entry.id);
        for (bool more = true; more;) {
            rows.clear();
            while (rows.changes().size() < rows_at_once && (more = statement.step()))
                rows.put(key_of(statement.integer(0)), statement.blob(1));
            if (!visit(entry.id, rows)) return false;
        }
    }
    // Every page has been read: the checkpoint on closing is safe now.
    checkpoint_on_close(database_, true);
    return true;
}

/// A damaged journal must not keep the records from being saved. After damage SQLite does not commit what else is in the
/// transaction, so that all of it is done again.
bool index_database::save(std::span<const index_job> jobs) {
    try {
        save_all(jobs);
        return true;
    } catch (const journal_damage&) {
        has_journal_ = false;
    }
    save_all(jobs);
    return false;
}

void index_database::save_all(std::span<const index_job> jobs) {
    sqlite::transaction transaction(database_);
    for (const index_job& job : jobs)
        if (const auto* entry = std::get_if<catalog_entry>(&job)) save_entry(*entry);
    save_records(jobs);
    // Marks may follow changes made after them: a late mark only keeps a record longer.
    for (const index_job& job : jobs)
        if (const auto* seen = std::get_if<seen_keys>(&job)) mark_seen(*seen);
    if (has_journal_) save_journal(jobs);
    transaction.commit();
}

void index_database::save_journal(std::span<const index_job> jobs) {
    try {
        for (const index_job& job : jobs) {
            if (const auto* entry = std::get_if<operation_entry>(&job)) journal_.save(*entry);
            if (const auto* changes = std::get_if<record_changes>(&job); changes != nullptr && changes->operation != 0)
                journal_.save(*changes);
            if (const auto* heard = std::get_if<listen>(&job)) journal_.save(*heard);
            if (const auto* tracks = std::get_if<known_tracks>(&job)) journal_.save(*tracks);
        }
    } catch (const sqlite::error& error) {
        const int kind = error.code() & 0xFF;
        if (kind == SQLITE_CORRUPT || kind == SQLITE_CONSTRAINT) throw journal_damage();
        throw;
    }
}

std::int64_t index_database::last_operation() const {
    try {
        return database_.query_integer("SELECT max(id) FROM operations");
    } catch (const sqlite::error& error) {
        if ((error.code() & 0xFF) != SQLITE_CORRUPT) throw;
        return 0;
    }
}

void index_database::trim_journal(std::int64_t time, std::int64_t bytes) {
    sqlite::transaction transaction(database_);
    journal_.trim(time, bytes);
    transaction.commit();
}

void index_database::save_entry(const catalog_entry& entry) {
    auto statement = database_.prepare(
        "INSERT INTO indexes (id, guid, retention, owner) VALUES (?, ?, ?, ?) "
        "ON CONFLICT (id) DO UPDATE SET retention = excluded.retention, owner = excluded.owner");
    const std::string guid = nuv::guid_text(entry.guid);
    statement.bind(1, entry.id).bind(2, std::string_view(guid));
    if (entry.retention) statement.bind(3, static_cast<std::int64_t>(*entry.retention));
    else statement.bind_null(3);
    if (entry.owner.empty()) statement.bind_null(4);
    else statement.bind(4, std::string_view(entry.owner));
    statement.run();
}

void index_database::save_records(std::span<const index_job> jobs) {
    const auto all = final_rows(jobs);
    for (std::span<const row> left = all; !left.empty();) {
        const auto block = left.first(std::min(rows_of_block, left.size()));
        if (block.size() == rows_of_block &&
            std::ranges::all_of(block, [](const row& each) { return data_of(each).has_value(); })) {
            if (!put_block_) put_block_ = database_.prepare(put_statement(rows_of_block));
            put(*put_block_, block);
            left = left.subspan(rows_of_block);
            continue;
        }
        const row& first = left.front();
        if (data_of(first)) put(put_, left.first(1));
        else erase_.bind(1, first.index_id).bind(2, first.key).run();
        left = left.subspan(1);
    }
}

bool index_database::back_up_once_a_day() {
    return database_.query_integer("SELECT EXISTS(SELECT 1 FROM records)") != 0 && sqlite::back_up_once_a_day(database_);
}

void index_database::back_up(std::string_view reason) { sqlite::back_up(database_, reason); }
bool index_database::is_whole() const { return sqlite::is_whole(database_.handle()); }

/// Rows marked within the last day stay as they are, so that a scan does not rewrite the database.
void index_database::mark_seen(const seen_keys& seen) {
    std::vector<std::int64_t> columns;
    columns.reserve(seen.keys.size());
    for (const std::uint64_t key : seen.keys) columns.push_back(column_of(key));
    std::ranges::sort(columns);
    auto statement = database_.prepare("UPDATE records SET last_seen = ? WHERE index_id = ? AND key = ? AND last_seen < ?");
    for (const std::int64_t column : columns)
        statement.bind(1, seen.now).bind(2, seen.index_id).bind(3, column).bind(4, seen.now - seen_slack).run();
}

index_reader::index_reader(const std::filesystem::path& path, std::chrono::milliseconds busy_timeout)
    : database_(path.string(), format), read_(database_.prepare("SELECT data FROM records WHERE index_id = ? AND key = ?")) {
    prepare_connection(database_, busy_timeout);
    database_.execute("PRAGMA query_only = ON");
}

std::size_t index_reader::read(std::int64_t index_id, std::uint64_t key, void* buffer, std::size_t capacity) {
    const std::scoped_lock lock(mutex_);
    read_.bind(1, index_id).bind(2, column_of(key));
    if (!read_.step()) return 0;
    const auto data = read_.blob(0);
    std::copy_n(data.begin(), std::min(data.size(), capacity), static_cast<std::byte*>(buffer));
    const std::size_t size = data.size();
    read_.reset();
    return size;
}

std::filesystem::path index_reader::back_up(std::string_view reason, const std::filesystem::path& beside) {
    const std::scoped_lock lock(mutex_);
    return sqlite::back_up(database_, reason, beside);
}

std::vector<std::uint64_t> index_reader::seen_before(std::int64_t index_id, std::int64_t time) {
    const std::scoped_lock lock(mutex_);
    auto statement = database_.prepare("SELECT key FROM records WHERE index_id = ? AND last_seen < ?");
    statement.bind(1, index_id).bind(2, time);
    std::vector<std::uint64_t> keys;
    while (statement.step()) keys.push_back(key_of(statement.integer(0)));
    return keys;
}

}  // namespace ostrevan::index
