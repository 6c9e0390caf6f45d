#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace ostrevan::indexing {

/// A prepared statement. Used by one thread at a time; parameters and columns count as SQLite does, from 1 and from 0.
class sqlite_statement {
public:
    sqlite_statement(sqlite3* database, const char* sql);

    sqlite_statement& bind(int parameter, std::int64_t value);
    sqlite_statement& bind(int parameter, std::string_view text);
    /// The bytes have to stay until the statement has been run.
    sqlite_statement& bind(int parameter, std::span<const std::byte> bytes);
    sqlite_statement& bind_null(int parameter);

    /// True when there is a row. After the last row the statement is ready to be bound again.
    bool step();
    void run() {
        while (step()) {
        }
    }
    void reset() noexcept;

    [[nodiscard]] std::int64_t integer(int column) const noexcept;
    [[nodiscard]] bool is_null(int column) const noexcept;
    /// Both valid until the next step.
    [[nodiscard]] std::string_view text(int column) const noexcept;
    [[nodiscard]] std::span<const std::byte> bytes(int column) const noexcept;

private:
    struct finalizer {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    void check(int code) const;
    std::unique_ptr<sqlite3_stmt, finalizer> statement_;
};

/// A connection. It never copies the write-ahead log into the database when it is closed, unless told to. Used by one
/// thread at a time. Every failure is an index_error.
class sqlite_database {
public:
    enum class access { read_only, read_write, create };
    sqlite_database(const std::filesystem::path& path, access wanted, std::chrono::milliseconds busy_timeout);

    void run(const char* sql);
    [[nodiscard]] sqlite_statement prepare(const char* sql) { return {database_.get(), sql}; }
    [[nodiscard]] std::int64_t integer(const char* sql);
    [[nodiscard]] std::string text(const char* sql);
    void checkpoint_on_close(bool wanted);

private:
    struct closer {
        void operator()(sqlite3* database) const noexcept;
    };
    std::unique_ptr<sqlite3, closer> database_;
};

/// Undoes everything since it was made, unless committed.
class sqlite_transaction {
public:
    explicit sqlite_transaction(sqlite_database& database) : database_(&database) { database.run("BEGIN IMMEDIATE"); }
    ~sqlite_transaction();
    sqlite_transaction(const sqlite_transaction&) = delete;
    sqlite_transaction& operator=(const sqlite_transaction&) = delete;
    void commit() {
        database_->run("COMMIT");
        database_ = nullptr;
    }

private:
    sqlite_database* database_;
};

}  // namespace ostrevan::indexing
