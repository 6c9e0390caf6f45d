#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "player/sqlite/database.h"

namespace ostrevan::sqlite {

/// Copies of a database in the folder `backup` beside it, named after the database, the time (UTC) and the reason:
/// `index-20260131-081500-legacy-import.sqlite`. Of the daily ones the newest of each of 7 days, 8 weeks and 12 months are
/// kept, of those for other reasons the newest 7; files with other names are never touched. Failures throw
/// `std::runtime_error` with a text for the user and leave no copy.

/// Copies the last committed state by SQLite's own means, checks the copy and syncs it to disk. With `beside`, copies that
/// file too, under the same name with its own at the end. Returns the path of the copy.
std::filesystem::path back_up(const database& source, std::string_view reason, const std::filesystem::path& beside = {});

/// The reason of the copies that are made every day.
inline constexpr std::string_view daily = "daily";

/// As `back_up`, unless there is a daily copy from today. Returns whether it has made one.
bool back_up_once_a_day(const database& source);

/// An existing copy.
struct stored_copy {
    std::filesystem::path path;
    std::string time;  ///< 20260131-081500, UTC
    std::string reason;
    std::uintmax_t size = 0;
};
/// The copies of the database at this path, the newest first.
std::vector<stored_copy> stored_copies(const std::filesystem::path& database);
/// Whether SQLite finds the database whole.
bool is_whole(sqlite3* database);

/// Whether the database at this path has copies.
bool has_copies(const std::filesystem::path& database);

}  // namespace ostrevan::sqlite
