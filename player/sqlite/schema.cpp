#include "player/sqlite/schema.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace ostrevan::sqlite {
namespace {

std::string column_of(sqlite3_stmt* row, int column) {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text == nullptr ? "" : text;
}

std::string without_spaces(std::string text) {
    std::erase_if(text, [](char c) { return std::string_view(" \t\r\n").find(c) != std::string_view::npos; });
    return text;
}

}  // namespace

std::optional<schema> schema_of(sqlite3* database) {
    schema found;
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(database,
                       "SELECT type, name, sql FROM sqlite_schema "
                       "WHERE type NOT IN ('table', 'index') OR name NOT LIKE 'sqlite~_%' ESCAPE '~'",
                       -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> query(raw, sqlite3_finalize);
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(raw)) == SQLITE_ROW)
        found[column_of(raw, 0) + " " + column_of(raw, 1)] = without_spaces(column_of(raw, 2));
    if (code != SQLITE_DONE) return std::nullopt;
    return found;
}

std::optional<schema> schema_made_by(const char* statements) {
    sqlite3* raw = nullptr;
    sqlite3_open(":memory:", &raw);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> made(raw, sqlite3_close);
    sqlite3_exec(raw, statements, nullptr, nullptr, nullptr);
    return schema_of(raw);
}

}  // namespace ostrevan::sqlite
