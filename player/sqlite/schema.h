#pragma once

#include <map>
#include <optional>
#include <string>

struct sqlite3;

namespace ostrevan::sqlite {

/// What a database consists of, such as "table records", and how each was made, without white space: a table that was
/// changed step by step is the same as one that was made at once. What SQLite keeps for itself is left out.
using schema = std::map<std::string, std::string>;

/// None when it cannot be read.
std::optional<schema> schema_of(sqlite3* database);
/// Of a new database after these statements.
std::optional<schema> schema_made_by(const char* statements);

}  // namespace ostrevan::sqlite
