#include "player/sqlite/backup.h"

#include <sqlite3.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "player/system/durable_file.h"

namespace ostrevan::sqlite {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kept_copies = 7;  // for each reason
constexpr const char* part_ending = ".part";
constexpr auto user_only = fs::perms::owner_read | fs::perms::owner_write;

[[noreturn]] void fail(const fs::path& path, const std::string& reason) {
    throw std::runtime_error("The backup " + path.string() + " cannot be made: " + reason +
                             ". Make room on the disk or correct the permissions, and try again.");
}

void sync(const fs::path& path) {
    if (const int error = system::sync_to_disk(path.string()); error != 0) fail(path, std::system_category().message(error));
}

/// 20260131-081500, in UTC, so that names sort by time.
std::string time_now() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts)};
}

/// The parts of a file name: STEM-20260131-081500-REASON.sqlite.
struct copy_name {
    std::string name;
    std::string time;
    std::string reason;
};

std::vector<copy_name> copies_of(const fs::path& database) {
    constexpr std::string_view shape = "-dddddddd-dddddd-", ending = ".sqlite";
    const auto stem = database.stem().string();
    std::vector<copy_name> copies;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(database.parent_path() / "backup", ignored)) {
        const auto name = entry.path().filename().string();
        if (!name.starts_with(stem) || !name.ends_with(ending) || name.size() < stem.size() + shape.size() + ending.size())
            continue;
        const auto after = std::string_view(name).substr(stem.size());
        if (!std::ranges::equal(shape, after.substr(0, shape.size()),
                                [](char wanted, char c) { return wanted == 'd' ? c >= '0' && c <= '9' : c == wanted; }))
            continue;
        const auto reason = after.substr(shape.size(), after.size() - shape.size() - ending.size());
        copies.push_back({name, std::string(after.substr(1, shape.size() - 2)), std::string(reason)});
    }
    return copies;
}

/// Removes the oldest copies and the files beside them. Copies dated in the future come from a wrong clock and count as the
/// oldest, so that they never displace those of today. A failure here must not undo the new copy.
void drop_old(const fs::path& database, const std::string& now, std::string_view reason) {
    auto copies = copies_of(database);
    std::erase_if(copies, [&](const copy_name& copy) { return copy.reason != reason; });
    std::ranges::sort(copies, {}, [&](const copy_name& copy) { return std::pair(copy.time <= now, copy.time); });
    std::error_code ignored;
    std::vector<fs::path> all;
    for (const auto& entry : fs::directory_iterator(database.parent_path() / "backup", ignored)) all.push_back(entry.path());
    for (std::size_t i = 0; i + kept_copies < copies.size(); ++i)
        for (const auto& path : all)
            if (path.filename().string().starts_with(fs::path(copies[i].name).stem().string() + "."))
                fs::remove(path, ignored);
}

/// Removes what a killed process left, logs of unfinished copies included. Safe, since only the holder of the profile makes
/// copies.
void drop_unfinished(const fs::path& folder, const std::string& stem) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        const auto name = entry.path().filename().string();
        if (name.starts_with(stem + "-") && name.find(part_ending) != name.npos) fs::remove(entry.path(), ignored);
    }
}

bool is_whole(sqlite3* copy) {
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(copy, "PRAGMA quick_check(1)", -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> check(raw, sqlite3_finalize);
    if (sqlite3_step(raw) != SQLITE_ROW) return false;
    const auto* const answer = reinterpret_cast<const char*>(sqlite3_column_text(raw, 0));
    return answer != nullptr && std::string_view(answer) == "ok";
}

void copy_pages(const database& source, const fs::path& to) {
    sqlite3* raw = nullptr;
    int code =
        sqlite3_open_v2(to.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> target(raw, sqlite3_close);
    std::error_code ignored;
    fs::permissions(to, user_only, ignored);
    if (code == SQLITE_OK) {
        auto* const backup = sqlite3_backup_init(raw, "main", source.handle(), "main");
        if (backup != nullptr) {
            sqlite3_backup_step(backup, -1);
            sqlite3_backup_finish(backup);
        }
        code = sqlite3_extended_errcode(raw);
    }
    if (code != SQLITE_OK) fail(to, sqlite3_errstr(code));
    if (!is_whole(raw)) fail(to, "the copy does not pass SQLite's check");
}

/// A copy being made, under a temporary name. Removed unless it was kept.
class unfinished_copy {
public:
    explicit unfinished_copy(const fs::path& whole) : whole_(whole), part_(whole.string() + part_ending) {}
    unfinished_copy(const unfinished_copy&) = delete;
    unfinished_copy& operator=(const unfinished_copy&) = delete;
    ~unfinished_copy() {
        std::error_code ignored;
        fs::remove(part_, ignored);
    }
    [[nodiscard]] const fs::path& path() const noexcept { return part_; }
    void keep() {
        sync(part_);
        std::error_code error;
        fs::rename(part_, whole_, error);
        if (error) fail(whole_, error.message());
    }

private:
    const fs::path whole_;
    const fs::path part_;
};

void copy_beside(const fs::path& file, const fs::path& to) {
    unfinished_copy copy(to);
    std::error_code error;
    fs::copy_file(file, copy.path(), fs::copy_options::overwrite_existing, error);
    if (!error) fs::permissions(copy.path(), user_only, error);
    if (error) fail(to, error.message());
    copy.keep();
}

}  // namespace

fs::path back_up(const database& source, std::string_view reason, const fs::path& beside) {
    static std::mutex one_at_a_time;
    const std::scoped_lock lock(one_at_a_time);
    const fs::path path(source.path());
    const auto folder = path.parent_path() / "backup";
    std::error_code error;
    if (fs::create_directories(folder, error)) fs::permissions(folder, fs::perms::owner_all, error);
    if (error) fail(folder, error.message());
    drop_unfinished(folder, path.stem().string());

    const auto now = time_now();
    const auto base = folder / (path.stem().string() + "-" + now + "-" + std::string(reason));
    fs::path whole = base.string() + ".sqlite";
    // The database comes last: its presence marks a complete set.
    if (!beside.empty()) copy_beside(beside, base.string() + "." + beside.filename().string());
    unfinished_copy copy(whole);
    copy_pages(source, copy.path());
    copy.keep();
    sync(folder);
    drop_old(path, now, reason);
    return whole;
}

void back_up_once_a_day(const database& source, std::string_view reason) {
    const auto today = time_now().substr(0, std::string_view("20260131").size());
    const auto copies = copies_of(source.path());
    const bool is_made = std::ranges::any_of(
        copies, [&](const copy_name& copy) { return copy.reason == reason && copy.time.starts_with(today); });
    if (!is_made) back_up(source, reason);
}

bool has_copies(const fs::path& database) { return !copies_of(database).empty(); }

}  // namespace ostrevan::sqlite
