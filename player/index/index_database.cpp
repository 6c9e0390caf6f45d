#include "player/index/index_database.h"

#include <algorithm>
#include <array>
#include <bit>
#include <fstream>
#include <string>
#include <string_view>

#include "player/index/index_error.h"

namespace ostrevan::indexing {
namespace {

constexpr std::int64_t application_id = 0x4F737449;  // "OstI"
constexpr std::int64_t format_version = 1;
constexpr std::int64_t seconds_per_day = 24 * 60 * 60;

constexpr const char* schema = R"(
    CREATE TABLE indexes (
        id INTEGER PRIMARY KEY,
        guid TEXT NOT NULL UNIQUE,
        retention INTEGER
    ) STRICT;
    CREATE TABLE records (
        index_id INTEGER NOT NULL,
        key INTEGER NOT NULL,
        last_seen INTEGER NOT NULL,
        data BLOB NOT NULL,
        PRIMARY KEY (index_id, key)
    ) STRICT, WITHOUT ROWID;
    PRAGMA application_id = 0x4F737449;
    PRAGMA user_version = 1;
)";

/// The database knows signed numbers only; the bits are the same.
std::int64_t column_of(std::uint64_t key) noexcept { return std::bit_cast<std::int64_t>(key); }
std::uint64_t key_of(std::int64_t column) noexcept { return std::bit_cast<std::uint64_t>(column); }

[[noreturn]] void refuse(const std::filesystem::path& path, std::string_view what, std::string_view advice) {
    throw index_error("Track index " + path.string() + ": " + std::string(what) + ". It has not been changed. " +
                          std::string(advice) + ".",
                      true);
}

void check_identity(const std::filesystem::path& path, std::int64_t application, std::int64_t version) {
    if (application != application_id) refuse(path, "the file belongs to another program", "Move it aside and start again");
    if (version > format_version)
        refuse(path, "the file was written by a newer version of the player",
               "Use that version, or move the file aside and start again");
    if (version < format_version)
        refuse(path, "the file is damaged", "Move it aside, or put a backup in its place, and start again");
}

/// Looks at the file's header before SQLite gets to see the file, because opening a database may already write to it.
/// While a rollback journal lies beside it the header need not be whole.
void check_header(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored) || std::filesystem::file_size(path, ignored) == 0) return;
    if (std::filesystem::exists(path.string() + "-journal", ignored)) return;
    std::ifstream file(path, std::ios::binary);
    if (!file) return;  // SQLite will say why

    constexpr std::string_view magic("SQLite format 3\0", 16);
    std::array<char, 100> header{};
    file.read(header.data(), header.size());
    if (file.gcount() != static_cast<std::streamsize>(header.size()) || std::string_view(header.data(), 16) != magic)
        refuse(path, "the file is not a track index", "Move it aside and start again");
    const auto number_at = [&](std::size_t offset) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(header[offset + i]);
        return static_cast<std::int64_t>(value);
    };
    check_identity(path, number_at(68), number_at(60));
}

struct row {
    std::int64_t index_id;
    std::int64_t key;
    std::size_t order;
    const record_changes* changes;
    const change_list::change* change;
};

/// The last change of every record, in the order of the table, which is twice as fast to write as any other.
std::vector<row> final_rows(std::span<const index_job> jobs) {
    std::vector<row> rows;
    for (const index_job& job : jobs)
        if (const auto* changes = std::get_if<record_changes>(&job))
            for (const auto& change : changes->list.changes())
                rows.push_back({changes->index_id, column_of(change.key), rows.size(), changes, &change});
    std::ranges::sort(rows, {}, [](const row& each) { return std::tuple(each.index_id, each.key, ~each.order); });
    const auto repeated = std::ranges::unique(rows, {}, [](const row& each) { return std::pair(each.index_id, each.key); });
    rows.erase(repeated.begin(), repeated.end());
    return rows;
}

}  // namespace

index_database::index_database(const std::filesystem::path& path, std::chrono::milliseconds busy_timeout)
    : database_((check_header(path), path), sqlite_database::access::create, busy_timeout), path_(path) {
    database_.run("PRAGMA cell_size_check = ON");
    const std::int64_t application = database_.integer("PRAGMA application_id");
    const std::int64_t version = database_.integer("PRAGMA user_version");
    if (application == 0 && version == 0 && database_.integer("SELECT count(*) FROM sqlite_schema") == 0) create();
    else check_identity(path, application, version);

    if (database_.text("PRAGMA journal_mode = WAL") != "wal")
        throw index_error("Track index " + path.string() + ": the file system cannot hold its write-ahead log. Put the " +
                          "profile folder on a local disk.");
    database_.run("PRAGMA synchronous = FULL; PRAGMA journal_size_limit = 16777216");
}

/// With a rollback journal, so that the database is either empty or complete, and its header always tells the version.
void index_database::create() {
    database_.run("PRAGMA synchronous = FULL");
    sqlite_transaction transaction(database_);
    database_.run(schema);
    transaction.commit();
}

std::vector<catalog_entry> index_database::catalog() {
    std::vector<catalog_entry> entries;
    auto statement = database_.prepare("SELECT id, guid, retention FROM indexes ORDER BY id");
    while (statement.step()) {
        const auto guid = nuv::parse_guid(statement.text(1));
        if (!guid) refuse(path_, "the file is damaged", "Move it aside, or put a backup in its place, and start again");
        catalog_entry entry{.id = statement.integer(0), .guid = *guid, .retention = {}};
        if (!statement.is_null(2)) entry.retention = static_cast<std::uint64_t>(statement.integer(2));
        entries.push_back(entry);
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
                rows.put(key_of(statement.integer(0)), statement.bytes(1));
            if (!visit(entry.id, rows)) return false;
        }
    }
    // Every page has been read by now: closing may tidy up.
    database_.checkpoint_on_close(true);
    return true;
}

void index_database::save(std::span<const index_job> jobs) {
    sqlite_transaction transaction(database_);
    for (const index_job& job : jobs)
        if (const auto* entry = std::get_if<catalog_entry>(&job)) save_entry(*entry);
    save_records(jobs);
    // A mark set late is a record kept longer: marks may come after changes that were made later.
    for (const index_job& job : jobs)
        if (const auto* seen = std::get_if<seen_keys>(&job)) mark_seen(*seen);
    transaction.commit();
}

void index_database::save_entry(const catalog_entry& entry) {
    auto statement = database_.prepare(
        "INSERT INTO indexes (id, guid, retention) VALUES (?, ?, ?) "
        "ON CONFLICT (id) DO UPDATE SET retention = excluded.retention");
    statement.bind(1, entry.id).bind(2, nuv::guid_text(entry.guid));
    if (entry.retention) statement.bind(3, static_cast<std::int64_t>(*entry.retention));
    else statement.bind_null(3);
    statement.run();
}

void index_database::save_records(std::span<const index_job> jobs) {
    auto put = database_.prepare(
        "INSERT INTO records (index_id, key, last_seen, data) VALUES (?, ?, ?, ?) "
        "ON CONFLICT (index_id, key) DO UPDATE SET last_seen = excluded.last_seen, data = excluded.data");
    auto erase = database_.prepare("DELETE FROM records WHERE index_id = ? AND key = ?");
    for (const row& each : final_rows(jobs)) {
        if (const auto data = each.changes->list.data(*each.change))
            put.bind(1, each.index_id).bind(2, each.key).bind(3, each.changes->seen).bind(4, *data).run();
        else erase.bind(1, each.index_id).bind(2, each.key).run();
    }
}

/// Rows marked within the last day stay as they are, so that a start of the player does not rewrite the database.
void index_database::mark_seen(const seen_keys& seen) {
    std::vector<std::int64_t> columns;
    columns.reserve(seen.keys.size());
    for (const std::uint64_t key : seen.keys) columns.push_back(column_of(key));
    std::ranges::sort(columns);
    auto statement = database_.prepare("UPDATE records SET last_seen = ? WHERE index_id = ? AND key = ? AND last_seen < ?");
    for (const std::int64_t column : columns)
        statement.bind(1, seen.now).bind(2, seen.index_id).bind(3, column).bind(4, seen.now - seconds_per_day).run();
}

index_reader::index_reader(const std::filesystem::path& path, std::chrono::milliseconds busy_timeout)
    : database_(path, sqlite_database::access::read_only, busy_timeout),
      read_(database_.prepare("SELECT data FROM records WHERE index_id = ? AND key = ?")) {}

std::size_t index_reader::read(std::int64_t index_id, std::uint64_t key, void* buffer, std::size_t capacity) {
    const std::scoped_lock lock(mutex_);
    read_.bind(1, index_id).bind(2, column_of(key));
    if (!read_.step()) return 0;
    const auto data = read_.bytes(0);
    std::copy_n(data.begin(), std::min(data.size(), capacity), static_cast<std::byte*>(buffer));
    const std::size_t size = data.size();
    read_.reset();
    return size;
}

std::vector<std::uint64_t> index_reader::seen_before(std::int64_t index_id, std::int64_t time) {
    const std::scoped_lock lock(mutex_);
    auto statement = database_.prepare("SELECT key FROM records WHERE index_id = ? AND last_seen < ?");
    statement.bind(1, index_id).bind(2, time);
    std::vector<std::uint64_t> keys;
    while (statement.step()) keys.push_back(key_of(statement.integer(0)));
    return keys;
}

}  // namespace ostrevan::indexing
