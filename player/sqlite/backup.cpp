#include "player/sqlite/backup.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "player/system/durable_file.h"

namespace ostrevan::sqlite {
namespace {

namespace fs = std::filesystem;

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
std::string text_of(std::time_t now) {
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts)};
}

std::string time_now() { return text_of(std::time(nullptr)); }

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
        if (!entry.is_regular_file(ignored)) continue;
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

std::string day_of(const copy_name& copy) { return copy.time.substr(0, std::string_view("20260131").size()); }
std::string month_of(const copy_name& copy) { return copy.time.substr(0, std::string_view("202601").size()); }

/// Weeks begin on Monday.
std::string week_of(const copy_name& copy) {
    using namespace std::chrono;
    const int date = std::stoi(day_of(copy));
    const year_month_day day{year(date / 10000), month(static_cast<unsigned>(date / 100 % 100)),
                             std::chrono::day(static_cast<unsigned>(date % 100))};
    const auto since_thursday = sys_days(day).time_since_epoch().count();  // 1970-01-01
    return std::to_string((since_thursday + 3) / 7);
}

std::string itself(const copy_name& copy) { return copy.name; }

/// How many periods keep their newest copy.
struct retention {
    std::string (*period_of)(const copy_name&);
    std::size_t periods;
};
constexpr retention of_daily[] = {{day_of, 7}, {week_of, 8}, {month_of, 12}};
constexpr retention of_others[] = {{itself, 7}};

/// The copies that are kept, of those for one reason. Copies dated in the future come from a wrong clock and count as the
/// oldest, so that they never displace those of today.
std::set<std::string> kept_of(std::vector<copy_name> copies, const std::string& now, std::span<const retention> rules) {
    std::ranges::sort(copies, std::greater(), [&](const copy_name& copy) { return std::pair(copy.time <= now, copy.time); });
    std::set<std::string> kept;
    for (const auto& rule : rules) {
        std::set<std::string> periods;
        for (const auto& copy : copies)
            if (periods.size() < rule.periods && periods.insert(rule.period_of(copy)).second) kept.insert(copy.name);
    }
    return kept;
}

/// Removes the older copies and the files beside them. A failure here must not undo the new copy.
void drop_old(const fs::path& database, const std::string& now, std::string_view reason) {
    auto copies = copies_of(database);
    std::erase_if(copies, [&](const copy_name& copy) { return copy.reason != reason; });
    const auto kept = kept_of(copies, now, reason == daily ? std::span<const retention>(of_daily) : of_others);
    std::error_code ignored;
    std::vector<fs::path> all;
    for (const auto& entry : fs::directory_iterator(database.parent_path() / "backup", ignored)) all.push_back(entry.path());
    for (const auto& copy : copies)
        for (const auto& path : all)
            if (!kept.contains(copy.name) && path.filename().string().starts_with(fs::path(copy.name).stem().string() + "."))
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

bool is_whole(sqlite3* database) {
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(database, "PRAGMA quick_check(1)", -1, &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> check(raw, sqlite3_finalize);
    if (sqlite3_step(raw) != SQLITE_ROW) return false;
    const auto* const answer = reinterpret_cast<const char*>(sqlite3_column_text(raw, 0));
    return answer != nullptr && std::string_view(answer) == "ok";
}

fs::path back_up(const database& source, std::string_view reason, const fs::path& beside) {
    static std::mutex one_at_a_time;
    const std::scoped_lock lock(one_at_a_time);
    const fs::path path(source.path());
    const auto folder = path.parent_path() / "backup";
    std::error_code error;
    if (fs::create_directories(folder, error)) fs::permissions(folder, fs::perms::owner_all, error);
    if (error) fail(folder, error.message());
    drop_unfinished(folder, path.stem().string());

    std::string now;
    fs::path base, whole;
    // Copies of one second get the seconds after it.
    for (auto time = std::time(nullptr); whole.empty() || fs::exists(whole); ++time) {
        now = text_of(time);
        base = folder / (path.stem().string() + "-" + now + "-" + std::string(reason));
        whole = base.string() + ".sqlite";
    }
    // The database comes last: its presence marks a complete set.
    if (!beside.empty()) copy_beside(beside, base.string() + "." + beside.filename().string());
    unfinished_copy copy(whole);
    copy_pages(source, copy.path());
    copy.keep();
    sync(folder);
    drop_old(path, now, reason);
    return whole;
}

bool back_up_once_a_day(const database& source) {
    const auto today = time_now().substr(0, std::string_view("20260131").size());
    const auto copies = copies_of(source.path());
    if (std::ranges::any_of(copies, [&](const copy_name& copy) { return copy.reason == daily && day_of(copy) == today; }))
        return false;
    back_up(source, daily);
    return true;
}

std::vector<stored_copy> stored_copies(const fs::path& database) {
    std::vector<stored_copy> all;
    for (auto& copy : copies_of(database)) {
        const auto path = database.parent_path() / "backup" / copy.name;
        std::error_code ignored;
        all.push_back({path, std::move(copy.time), std::move(copy.reason), fs::file_size(path, ignored)});
    }
    std::ranges::sort(all, std::greater(), &stored_copy::time);
    return all;
}

bool has_copies(const fs::path& database) { return !copies_of(database).empty(); }

}  // namespace ostrevan::sqlite
