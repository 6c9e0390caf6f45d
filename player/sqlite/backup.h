#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "player/sqlite/database.h"

namespace ostrevan::sqlite {

/// Copies of a database in the folder `backup` beside it, named after the database, the time (UTC) and the reason:
/// `index-20260131-081500-legacy-import.sqlite`. The newest few for each reason are kept; files with other names are never
/// touched. Failures throw `std::runtime_error` with a text for the user and leave no copy.

/// Copies the last committed state by SQLite's own means, checks the copy and syncs it to disk. With `beside`, copies that
/// file too, under the same name with its own at the end. Returns the path of the copy.
std::filesystem::path back_up(const database& source, std::string_view reason, const std::filesystem::path& beside = {});

/// As `back_up`, unless there is a copy for this reason from today.
void back_up_once_a_day(const database& source, std::string_view reason);

/// Whether the database at this path has copies.
bool has_copies(const std::filesystem::path& database);

}  // namespace ostrevan::sqlite
