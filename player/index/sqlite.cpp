#include "player/index/sqlite.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "player/index/index_error.h"

namespace ostrevan::indexing {
namespace {

struct fault {
    int code;
    const char* what;
    const char* advice;
};

constexpr std::array faults = {
    fault{SQLITE_NOTADB, "the file is not a database", "Move it aside and start again"},
    fault{SQLITE_CORRUPT, "the file is damaged", "Move it aside, or put a backup in its place, and start again"},
    fault{SQLITE_FULL, "the disk is full", "Make room"},
    fault{SQLITE_BUSY, "another program is using it", "Close that program"},
    fault{SQLITE_LOCKED, "another program is using it", "Close that program"},
    fault{SQLITE_READONLY, "it may not be written", "Check the permissions of the file and its folder"},
    fault{SQLITE_PERM, "it may not be accessed", "Check the permissions of the file and its folder"},
    fault{SQLITE_AUTH, "it may not be accessed", "Check the permissions of the file and its folder"},
    fault{SQLITE_CANTOPEN, "it cannot be opened", "Check that its folder exists and may be written"},
    fault{SQLITE_IOERR, "the disk reported an error", "Check the disk"},
};

[[noreturn]] void fail(sqlite3* database, int code) {
    constexpr fault unknown{0, "the database refused the operation", "Check the disk and the file"};
    const int primary = code & 0xFF;
    const auto known = std::ranges::find(faults, primary, &fault::code);
    const fault& found = known == faults.end() ? unknown : *known;

    const char* name = sqlite3_db_filename(database, "main");
    std::string text = "Track index " + std::string(name == nullptr ? "" : name) + ": " + found.what;
    text += std::string(" (") + sqlite3_errmsg(database);
    if (const int system = sqlite3_system_errno(database);
        system != 0 && (primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN))
        text += ": " + std::generic_category().message(system);
    text += std::string("). ") + found.advice;
    const bool damaged = primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
    throw index_error(text + ".", damaged);
}

}  // namespace

sqlite_statement::sqlite_statement(sqlite3* database, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) fail(database, code);
    statement_.reset(statement);
}

void sqlite_statement::finalizer::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

void sqlite_statement::check(int code) const {
    if (code != SQLITE_OK) fail(sqlite3_db_handle(statement_.get()), code);
}

sqlite_statement& sqlite_statement::bind(int parameter, std::int64_t value) {
    check(sqlite3_bind_int64(statement_.get(), parameter, value));
    return *this;
}

sqlite_statement& sqlite_statement::bind(int parameter, std::string_view text) {
    check(sqlite3_bind_text64(statement_.get(), parameter, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
    return *this;
}

sqlite_statement& sqlite_statement::bind(int parameter, std::span<const std::byte> bytes) {
    // A null pointer would bind NULL and not an empty blob.
    const void* data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    check(sqlite3_bind_blob64(statement_.get(), parameter, data, bytes.size(), SQLITE_STATIC));
    return *this;
}

sqlite_statement& sqlite_statement::bind_null(int parameter) {
    check(sqlite3_bind_null(statement_.get(), parameter));
    return *this;
}

bool sqlite_statement::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) {
        reset();
        return false;
    }
    try {
        fail(sqlite3_db_handle(statement_.get()), code);
    } catch (...) {
        reset();
        throw;
    }
}

void sqlite_statement::reset() noexcept { sqlite3_reset(statement_.get()); }

std::int64_t sqlite_statement::integer(int column) const noexcept { return sqlite3_column_int64(statement_.get(), column); }

bool sqlite_statement::is_null(int column) const noexcept {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

std::string_view sqlite_statement::text(int column) const noexcept {
    const unsigned char* data = sqlite3_column_text(statement_.get(), column);
    return {reinterpret_cast<const char*>(data), static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

std::span<const std::byte> sqlite_statement::bytes(int column) const noexcept {
    const void* data = sqlite3_column_blob(statement_.get(), column);
    return {static_cast<const std::byte*>(data), static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

sqlite_database::sqlite_database(const std::filesystem::path& path, access wanted, std::chrono::milliseconds busy_timeout) {
    const int mode = wanted == access::read_only ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int flags =
        mode | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | (wanted == access::create ? SQLITE_OPEN_CREATE : 0);
    sqlite3* database = nullptr;
    const int code = sqlite3_open_v2(reinterpret_cast<const char*>(path.u8string().c_str()), &database, flags, nullptr);
    database_.reset(database);
    if (code != SQLITE_OK) fail(database, code);
    sqlite3_busy_timeout(database, static_cast<int>(busy_timeout.count()));
    checkpoint_on_close(false);
    // SQLite opens a write-protected file for reading only, without a word.
    if (wanted != access::read_only && sqlite3_db_readonly(database, "main") == 1) fail(database, SQLITE_READONLY);
}

void sqlite_database::closer::operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }

void sqlite_database::run(const char* sql) {
    const int code = sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) fail(database_.get(), code);
}

std::int64_t sqlite_database::integer(const char* sql) {
    sqlite_statement statement = prepare(sql);
    return statement.step() ? statement.integer(0) : 0;
}

std::string sqlite_database::text(const char* sql) {
    sqlite_statement statement = prepare(sql);
    return statement.step() ? std::string(statement.text(0)) : std::string();
}

void sqlite_database::checkpoint_on_close(bool wanted) {
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, wanted ? 0 : 1, nullptr);
}

sqlite_transaction::~sqlite_transaction() {
    if (database_ == nullptr) return;
    try {
        database_->run("ROLLBACK");
    } catch (const index_error&) {  // a failed write may have rolled back by itself
    }
}

}  // namespace ostrevan::indexing
