#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "player/sqlite/database.h"

namespace ostrevan::sqlite {

/// Copies of a database in the folder `backup` beside it, named after the database, the time (UTC) and the reason:
/// `index-20260131-081500-legacy-import.sqlite`. The newest few for each reason are kept; a file with another name is never
/// touched. What fails throws `std::runtime_error` with a text for the user, and leaves no copy behind.

/// Copies the database as its last commit left it, with SQLite's own means, checks the copy and brings it to the disk.
/// Beside it goes, when its name is not empty, a copy of another file, named alike with that file's name at the end. Answers
/// the copy's path.
std::filesystem::path back_up(const database& source, std::string_view reason, const std::filesystem::path& beside = {});

/// As `back_up`, unless there is a copy of today for this reason.
void back_up_once_a_day(const database& source, std::string_view reason);

/// Whether there is a copy of the database at this path.
bool has_copies(const std::filesystem::path& database);

}  // namespace ostrevan::sqlite
