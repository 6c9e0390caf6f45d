#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "player/sqlite/reading_copy.h"

struct sqlite3;
struct sqlite3_stmt;

namespace ostrevan::sqlite {

/// A failure of SQLite; the text names the database and the remedy. `code()` is SQLite's extended result code.
class error : public std::runtime_error {
public:
    error(int code, const std::string& text) : std::runtime_error(text), code_(code) {}
    [[nodiscard]] int code() const noexcept { return code_; }

private:
    int code_;
};

/// How a database of this program is marked in its header, and how an empty one is set up.
struct format {
    std::int32_t application_id;  ///< marks the file as ours
    std::int32_t version;         ///< `user_version`; a file with a higher one is refused
    const char* schema;           ///< statements that make the tables of an empty database
    const char* contents;         ///< what the user calls the contents, such as "library"
    /// Statements that upgrade by one version each, the first from version 1 to 2.
    std::span<const char* const> upgrades{};
    /// Defines the SQL functions that the upgrades call; returns SQLite's result code.
    int (*define_functions)(sqlite3* connection) noexcept = nullptr;
};

/// A prepared statement. Parameters count from 1 and columns from 0. Bound bytes and texts are not copied: they must live
/// until the next `run`, or until the last `step`. Used by one thread at a time, destroyed before its database.
class statement {
public:
    statement() noexcept = default;
    statement(statement&& other) noexcept;
    statement& operator=(statement&& other) noexcept;
    ~statement();

    statement& bind(int parameter, std::int64_t value);
    statement& bind(int parameter, double value);
    statement& bind(int parameter, std::string_view text);
    statement& bind(int parameter, std::span<const std::byte> blob);
    statement& bind_null(int parameter);

    /// True when there is a row. After the last row the statement is ready to be bound again.
    bool step();
    /// Runs to the end, for statements without rows.
    void run();
    void reset() noexcept;

    [[nodiscard]] bool is_null(int column) const noexcept;
    [[nodiscard]] std::int64_t integer(int column) const noexcept;
    [[nodiscard]] double real(int column) const noexcept;
    /// Valid until the next step or reset.
    [[nodiscard]] std::string_view text(int column) const noexcept;
    [[nodiscard]] std::span<const std::byte> blob(int column) const noexcept;

private:
    friend class database;
    statement(sqlite3_stmt* handle, const class database& owner) noexcept : handle_(handle), owner_(&owner) {}

    sqlite3_stmt* handle_ = nullptr;
    const class database* owner_ = nullptr;
};

/// One connection to a database file. Used by one thread at a time: one that holds the lock, where there are several. Not
/// movable: its statements refer to it.
class database {
public:
    /// Opens the file, or creates it, private to its user. Throws `error` with the reason and the remedy, and leaves the
    /// file unchanged, when it is damaged, newer than this program, altered by or belonging to another program, or no
    /// database, and when it is empty although copies of an earlier one exist. An older format is backed up and upgraded.
    /// The database is in WAL mode and commits are durable. A file that cannot be written is opened for reading, as a
    /// private copy.
    database(std::string path, const format& expected);
    ~database();
    database(const database&) = delete;
    database& operator=(const database&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// The file that is open, which is a private copy of one that cannot be written.
    [[nodiscard]] std::string file() const { return copy_ ? copy_->file() : path_; }
    /// Whether nothing can be written; attempts throw.
    [[nodiscard]] bool is_read_only() const noexcept { return copy_.has_value(); }

    /// Runs one or more statements without parameters and ignores their rows.
    void execute(const char* sql);
    [[nodiscard]] statement prepare(std::string_view sql) const;
    /// The first column of the first row, 0 without rows.
    [[nodiscard]] std::int64_t query_integer(std::string_view sql) const;

    [[nodiscard]] std::int64_t last_insert_id() const noexcept;
    /// The number of rows changed by the last statement that changed any.
    [[nodiscard]] std::int64_t changes() const noexcept;
    /// For calls that this class does not offer.
    [[nodiscard]] sqlite3* handle() const noexcept { return handle_.get(); }

    /// Waits until no other thread uses the connection. A transaction holds this lock, too. [any-thread]
    [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() const { return std::unique_lock(mutex_); }

    /// Throws `error` for the result code of a call on this connection.
    [[noreturn]] void fail(int code) const;

private:
    struct closer {
        void operator()(sqlite3* handle) const noexcept;
    };
    void check_file() const;
    void open(const std::string& file, const format& expected);
    void open_copy(const format& expected);
    void check_header(const format& expected);
    void check_schema(const format& expected);
    void upgrade(std::int64_t version, const format& expected);

    mutable std::recursive_mutex mutex_;
    std::string path_;
    std::string contents_;
    std::optional<reading_copy> copy_;  // outlives the connection to it
    std::unique_ptr<sqlite3, closer> handle_;
};

/// A write transaction, rolled back unless committed.
class transaction {
public:
    /// Takes the write lock at once.
    explicit transaction(database& target);
    ~transaction();
    transaction(const transaction&) = delete;
    transaction& operator=(const transaction&) = delete;

    void commit();

private:
    database& target_;
    const std::unique_lock<std::recursive_mutex> lock_;
    bool open_ = true;
};

}  // namespace ostrevan::sqlite
