#include "player/sqlite/backup.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace ostrevan::sqlite {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kept_copies = 5;

[[noreturn]] void fail(const fs::path& path, const std::string& reason) {
    throw std::runtime_error("The backup " + path.string() + " cannot be made: " + reason +
                             ". Nothing has been changed; make room on the disk or correct the permissions, and try again.");
}

void sync(const fs::path& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool done = file >= 0 && ::fsync(file) == 0;
    const int error = errno;
    if (file >= 0) ::close(file);
    if (!done) fail(path, std::system_category().message(error));
}

/// 20260131-081500, in UTC, so that names sort by time.
std::string time_now() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts)};
}

bool is_copy_of(std::string_view stem, const std::string& name) {
    constexpr std::string_view time_shape = "-dddddddd-dddddd-";
    if (!name.starts_with(stem) || !name.ends_with(".sqlite") || name.size() < stem.size() + time_shape.size()) return false;
    return std::ranges::equal(time_shape, std::string_view(name).substr(stem.size(), time_shape.size()),
                              [](char shape, char c) { return shape == 'd' ? c >= '0' && c <= '9' : c == shape; });
}

/// The oldest go, with what lies beside them. That this fails must not undo the copy just made.
void drop_old(const fs::path& folder, const std::string& stem) {
    std::vector<std::string> copies;
    std::vector<fs::path> all;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        all.push_back(entry.path());
        if (is_copy_of(stem, entry.path().filename().string())) copies.push_back(entry.path().filename().stem().string());
    }
    std::ranges::sort(copies);
    for (std::size_t i = 0; i + kept_copies < copies.size(); ++i)
        for (const auto& path : all)
            if (path.filename().string().starts_with(copies[i] + ".")) fs::remove(path, ignored);
}

void copy_pages(const database& source, const fs::path& to) {
    sqlite3* raw = nullptr;
    int code =
        sqlite3_open_v2(to.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> target(raw, sqlite3_close);
    if (code == SQLITE_OK) {
        auto* const backup = sqlite3_backup_init(raw, "main", source.handle(), "main");
        if (backup != nullptr) {
            sqlite3_backup_step(backup, -1);
            sqlite3_backup_finish(backup);
        }
        code = sqlite3_extended_errcode(raw);
    }
    if (code != SQLITE_OK) fail(to, sqlite3_errstr(code));
}

/// A copy under way, under a name that nobody takes for a whole one. Gone unless it was kept.
class unfinished_copy {
public:
    explicit unfinished_copy(const fs::path& whole) : whole_(whole), part_(whole.string() + ".part") {}
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
    if (error) fail(to, error.message());
    copy.keep();
}

}  // namespace

fs::path back_up(const database& source, std::string_view reason, const fs::path& beside) {
    const fs::path path(source.path());
    const auto folder = path.parent_path() / "backup";
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) fail(folder, error.message());

    const auto stem = path.stem().string();
    const auto base = folder / (stem + "-" + time_now() + "-" + std::string(reason));
    const fs::path whole = base.string() + ".sqlite";
    // The database comes last: where it stands, the set is complete.
    if (!beside.empty()) copy_beside(beside, base.string() + "." + beside.filename().string());
    unfinished_copy copy(whole);
    copy_pages(source, copy.path());
    copy.keep();
    sync(folder);
    drop_old(folder, stem);
    return whole;
}

}  // namespace ostrevan::sqlite
