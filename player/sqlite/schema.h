#pragma once

#include <map>
#include <optional>
#include <string>

struct sqlite3;

namespace ostrevan::sqlite {

/// The parts of a database, such as "table records", and the statement that made each, without white space, so that tables
/// changed step by step compare equal to those made at once. SQLite's own parts are left out.
using schema = std::map<std::string, std::string>;

/// Empty when it cannot be read.
std::optional<schema> schema_of(sqlite3* database);
/// The schema of a new database after these statements.
std::optional<schema> schema_made_by(const char* statements);

}  // namespace ostrevan::sqlite
