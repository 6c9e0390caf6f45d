#include "player/sqlite/database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

#include "player/sqlite/backup.h"
#include "player/sqlite/schema.h"
#include "player/system/descriptor.h"

namespace ostrevan::sqlite {
namespace {

namespace fs = std::filesystem;

constexpr int lock_wait_ms = 5000;

struct way_out {
    int primary_code;
    const char* text;
};

/// What the user can do about a failure, by SQLite's primary result code.
constexpr way_out ways_out[] = {
    {SQLITE_CORRUPT, "The file was left as it is. Restore it from a backup, or move it away to start with an empty one."},
    {SQLITE_NOTADB, "The file was left as it is. Move it away to start with an empty one."},
    {SQLITE_BUSY, "Another program is using it. End that program and try again."},
    {SQLITE_LOCKED, "Another program is using it. End that program and try again."},
    {SQLITE_FULL, "Nothing of this step was saved. Make room on the disk and try again."},
    {SQLITE_READONLY, "Make room on the disk, or the file and its folder writable, and try again."},
    {SQLITE_PERM, "Make the file and its folder writable and try again."},
    {SQLITE_CANTOPEN, "Check that its folder exists and is writable."},
    {SQLITE_IOERR, "Nothing of this step was saved. Check the disk and its free space, and try again."},
};

const char* way_out_of(int code) noexcept {
    for (const auto& way : ways_out)
        if (way.primary_code == (code & 0xFF)) return way.text;
    return "Nothing of this step was saved.";
}

bool is_about_writing(int code) noexcept {
    constexpr int codes[] = {SQLITE_READONLY, SQLITE_CANTOPEN, SQLITE_PERM, SQLITE_FULL, SQLITE_IOERR};
    return std::ranges::find(codes, code & 0xFF) != std::end(codes);
}

/// Trusts nothing in the file.
void harden(sqlite3* handle) {
    constexpr struct {
        int option, value;
    } settings[] = {{SQLITE_DBCONFIG_DEFENSIVE, 1},
                    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
                    {SQLITE_DBCONFIG_ENABLE_VIEW, 0}};
    for (const auto& [option, value] : settings) sqlite3_db_config(handle, option, value, nullptr);
    sqlite3_exec(handle, "PRAGMA cell_size_check=ON", nullptr, nullptr, nullptr);
}

std::string describe(const std::string& contents, const std::string& path, const std::string& what) {
    return "The " + contents + " database \"" + path + "\" " + what;
}

}  // namespace

statement::statement(statement&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)), owner_(other.owner_) {}

statement& statement::operator=(statement&& other) noexcept {
    std::swap(handle_, other.handle_);
    std::swap(owner_, other.owner_);
    return *this;
}

statement::~statement() { sqlite3_finalize(handle_); }

statement& statement::bind(int parameter, std::int64_t value) {
    if (const int code = sqlite3_bind_int64(handle_, parameter, value)) owner_->fail(code);
    return *this;
}

statement& statement::bind(int parameter, double value) {
    if (const int code = sqlite3_bind_double(handle_, parameter, value)) owner_->fail(code);
    return *this;
}

statement& statement::bind(int parameter, std::string_view text) {
    const char* data = text.data() != nullptr ? text.data() : "";
    if (const int code = sqlite3_bind_text64(handle_, parameter, data, text.size(), SQLITE_STATIC, SQLITE_UTF8))
        owner_->fail(code);
    return *this;
}

statement& statement::bind(int parameter, std::span<const std::byte> blob) {
    // A null pointer would bind NULL instead of an empty blob.
    const void* data = blob.data() != nullptr ? static_cast<const void*>(blob.data()) : "";
    if (const int code = sqlite3_bind_blob64(handle_, parameter, data, blob.size(), SQLITE_STATIC)) owner_->fail(code);
    return *this;
}

statement& statement::bind_null(int parameter) {
    if (const int code = sqlite3_bind_null(handle_, parameter)) owner_->fail(code);
    return *this;
}

bool statement::step() {
    const int code = sqlite3_step(handle_);
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) {
        // The reset discards the text of the failure.
        struct resetter {
            statement& target;
            ~resetter() { target.reset(); }
        } after{*this};
        owner_->fail(sqlite3_extended_errcode(owner_->handle()));
    }
    reset();
    return false;
}

void statement::run() {
    while (step()) {
    }
}

void statement::reset() noexcept { sqlite3_reset(handle_); }

bool statement::is_null(int column) const noexcept { return sqlite3_column_type(handle_, column) == SQLITE_NULL; }
std::int64_t statement::integer(int column) const noexcept { return sqlite3_column_int64(handle_, column); }
double statement::real(int column) const noexcept { return sqlite3_column_double(handle_, column); }

std::string_view statement::text(int column) const noexcept {
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
    if (data == nullptr) return {};
    return {data, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
}

std::span<const std::byte> statement::blob(int column) const noexcept {
    const auto* data = static_cast<const std::byte*>(sqlite3_column_blob(handle_, column));
    if (data == nullptr) return {};
    return {data, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
}

void database::closer::operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }

database::database(std::string path, const format& expected) : path_(std::move(path)), contents_(expected.contents) {
    check_file();
    try {
        open(path_, expected);
        if (sqlite3_db_readonly(handle_.get(), "main") == 1) fail(SQLITE_READONLY);
    } catch (const error& refused) {
        if (!is_about_writing(refused.code())) throw;
        open_copy(expected);
        if (!handle_) throw;
    }
}

database::~database() = default;

/// Checks for what SQLite would report without a reason, wait for, or take for a new database.
void database::check_file() const {
    std::error_code failed;
    const auto status = fs::status(path_, failed);
    if (status.type() == fs::file_type::not_found) {
        // SQLite would make it readable for everybody. The files beside it get the mode of the database.
        constexpr mode_t user_only = 0600;
        const system::descriptor made(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, user_only));
    } else if (!failed && status.type() != fs::file_type::regular) {
        throw error(SQLITE_NOTADB, describe(contents_, path_, "is not a file. ") + way_out_of(SQLITE_NOTADB));
    } else if (!failed && fs::file_size(path_, failed) == 0 && has_copies(path_)) {
        throw error(SQLITE_CORRUPT, describe(contents_, path_, "is empty, but there are copies of an earlier one in ") +
                                        (fs::path(path_).parent_path() / "backup").string() +
                                        ". Put the newest in its place, or remove the empty file to start anew.");
    }
}

void database::open(const std::string& file, const format& expected) {
    sqlite3* raw = nullptr;
    const int code =
        sqlite3_open_v2(file.c_str(), &raw,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    handle_.reset(raw);
    if (code != SQLITE_OK) fail(code);
    sqlite3_busy_timeout(raw, lock_wait_ms);
    harden(raw);

    // A refused file must not change, not even by the checkpoint on closing.
    sqlite3_db_config(raw, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    check_header(expected);
    check_schema(expected);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
    // Only after the checks: this writes into the header of a database that is not in WAL mode yet.
    execute("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON");
}

/// For a file on a full or read-only disk: SQLite writes beside a database even to read it.
void database::open_copy(const format& expected) {
    handle_.reset();
    copy_ = reading_copy::of(path_);
    if (!copy_) return;
    open(copy_->file(), expected);
    execute("PRAGMA query_only=ON");
}

void database::check_header(const format& expected) {
    // A process killed before its first commit leaves an empty file.
    const auto is_empty = [&] {
        return query_integer("SELECT count(*) FROM sqlite_schema") == 0 && query_integer("PRAGMA user_version") == 0;
    };
    if (query_integer("PRAGMA application_id") == 0 && is_empty()) {
        transaction setup(*this);
        if (is_empty()) {
            execute(expected.schema);
            execute(("PRAGMA application_id=" + std::to_string(expected.application_id) +
                     "; PRAGMA user_version=" + std::to_string(expected.version))
                        .c_str());
        }
        setup.commit();
    }
    if (query_integer("PRAGMA application_id") != expected.application_id)
        throw error(SQLITE_NOTADB, describe(contents_, path_, "belongs to another program. ") + way_out_of(SQLITE_NOTADB));
    const auto version = query_integer("PRAGMA user_version");
    if (version > expected.version)
        throw error(SQLITE_NOTADB, describe(contents_, path_, "was written by a newer version of this program (format ") +
                                       std::to_string(version) + ", this one knows " + std::to_string(expected.version) +
                                       "). Use the newer version, or move the file away to start with an empty one.");
    if (version < expected.version) upgrade(version, expected);
}

/// Refuses tables of another form, and above all triggers and views: nothing in them may run.
void database::check_schema(const format& expected) {
    const auto found = schema_of(handle_.get());
    const auto wanted = schema_made_by(expected.schema);
    if (!found || !wanted) fail(sqlite3_extended_errcode(handle_.get()));
    if (found == wanted) return;
    const auto foreign = std::ranges::find_if(*found, [&](const auto& each) { return !wanted->contains(each.first); });
    throw error(SQLITE_NOTADB,
                describe(contents_, path_,
                         foreign != found->end() ? "holds what this program does not make (" + foreign->first + "). "
                                                 : "has other tables than this program makes. ") +
                    way_out_of(SQLITE_CORRUPT));
}

void database::upgrade(std::int64_t version, const format& expected) {
    const auto known = static_cast<std::int64_t>(expected.upgrades.size());
    if (version < 1 || expected.version - 1 > known)
        throw error(SQLITE_NOTADB, describe(contents_, path_, "has a format that this program does not know. ") +
                                       way_out_of(SQLITE_NOTADB));
    if (!copy_) back_up(*this, "format-" + std::to_string(version));
    if (expected.define_functions != nullptr)
        if (const int code = expected.define_functions(handle_.get())) fail(code);
    transaction change(*this);
    for (auto step = version; step < expected.version; ++step)
        execute(expected.upgrades[static_cast<std::size_t>(step - 1)]);
    execute(("PRAGMA user_version=" + std::to_string(expected.version)).c_str());
    change.commit();
}

void database::execute(const char* sql) {
    if (const int code = sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr)) fail(code);
}

statement database::prepare(std::string_view sql) const {
    sqlite3_stmt* raw = nullptr;
    const int code = sqlite3_prepare_v3(handle_.get(), sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                        &raw, nullptr);
    if (code != SQLITE_OK) fail(code);
    return {raw, *this};
}

std::int64_t database::query_integer(std::string_view sql) const {
    auto query = prepare(sql);
    return query.step() ? query.integer(0) : 0;
}

std::int64_t database::last_insert_id() const noexcept { return sqlite3_last_insert_rowid(handle_.get()); }
std::int64_t database::changes() const noexcept { return sqlite3_changes64(handle_.get()); }

void database::fail(int code) const {
    // Damage found later: closing must not checkpoint the log into the file.
    if ((code & 0xFF) == SQLITE_CORRUPT || (code & 0xFF) == SQLITE_NOTADB)
        sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    const bool is_current = handle_ && (sqlite3_extended_errcode(handle_.get()) & 0xFF) == (code & 0xFF);
    const std::string reason = is_current ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code);
    throw error(code, describe(contents_, path_, "cannot be used: " + reason + ". " + way_out_of(code)));
}

transaction::transaction(database& target) : target_(target), lock_(target.lock()) { target_.execute("BEGIN IMMEDIATE"); }

transaction::~transaction() {
    // A failed statement may have rolled back already; this then does nothing.
    if (open_) sqlite3_exec(target_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void transaction::commit() {
    target_.execute("COMMIT");
    open_ = false;
}

}  // namespace ostrevan::sqlite
