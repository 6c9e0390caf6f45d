#pragma once

struct sqlite3;

namespace ostrevan::library {

/// Defines the SQL function `info_of_version_5`, which turns track information as libraries up to version 4 stored it into
/// the bytes of a `file_info`. Both forms: docs/file-formats.md. Returns a result code of SQLite.
int define_conversion(sqlite3* database) noexcept;

}  // namespace ostrevan::library
