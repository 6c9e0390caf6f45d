#include "player/sqlite/database.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "player/sqlite/backup.h"
#include "tests/player/synced_files.h"
#include "tests/player/temporary_folder.h"

namespace {

using namespace ostrevan::sqlite;
namespace fs = std::filesystem;

constexpr format shelf{0x53484C46, 2, "CREATE TABLE books(title TEXT); INSERT INTO books VALUES('Emma');", "shelf"};

class database_file : public ostrevan::temporary_folder {
protected:
    [[nodiscard]] std::string bytes() const { return fs::is_regular_file(path_) ? content(path_) : ""; }
    /// Changes by another program.
    void change(const char* sql) const {
        sqlite3* raw = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &raw), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(raw, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(raw);
    }

    const std::string path_ = path("shelf.sqlite");
    const fs::path backups_ = path("backup");
};

TEST_F(database_file, is_made_where_there_was_none_and_where_a_killed_process_left_an_empty_file) {
    for (const bool is_left_empty : {false, true}) {
        fs::remove(path_);
        if (is_left_empty) write(path_, "");
        for (int start = 0; start < 2; ++start) {
            database opened(path_, shelf);
            EXPECT_TRUE(is_left_empty || mode(path_) == 0600U);
            for (int attempt = 0; attempt < 2; ++attempt) {
                const transaction given_up(opened);
                EXPECT_EQ(opened.query_integer("SELECT count(*) FROM books"), 1);
                opened.execute("DELETE FROM books");
            }
            EXPECT_EQ(opened.query_integer("PRAGMA synchronous"), 2) << "or a power failure takes what was committed";
            EXPECT_EQ(opened.query_integer("PRAGMA foreign_keys"), 1);
        }
    }
}

TEST_F(database_file, that_cannot_be_used_is_named_and_left_as_it_is) {
    const auto with_header = [&](std::int32_t id, std::int32_t version) {
        return [=, this] { database(path_, {id, version, shelf.schema, "shelf"}); };
    };
    const auto changed = [&](const char* sql) {
        return [=, this] {
            { database(path_, shelf); }
            change(sql);
        };
    };
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"not a database", [&] { write(path_, "TITLE: my books\n" + std::string(4000, 'x')); }},
        {"newer version", with_header(shelf.application_id, 3)},
        {"another program", with_header(0x1234, 2)},
        {"another program", with_header(0, 0)},
        {"another program", [&] { change("PRAGMA user_version = 7"); }},
        {"not a file", [&] { ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0); }},
        {"not a file", [&] { fs::create_directory(path_); }},
        {"(trigger theft)", changed("CREATE TRIGGER theft AFTER UPDATE ON books BEGIN DELETE FROM books; END")},
        {"(view others)", changed("CREATE VIEW others AS SELECT * FROM books")},
        {"other tables", changed("ALTER TABLE books ADD COLUMN price")},
        {"copies of an earlier one",
         [&] {
             write(path_, "");
             fs::create_directory(backups_);
             write(backups_ / "shelf-20260101-000000-test.sqlite", "");
         }},
        {"malformed",
         [&] {
             { database(path_, shelf); }
             std::string contents = bytes();
             contents.replace(100, 400, 400, '\x7F');
             write(path_, contents);
         }},
        {"malformed",  // and with the log of a killed process
         [&] {
             const std::string kept = path("kept");
             {
                 database killed(path_, shelf);
                 killed.execute("INSERT INTO books VALUES('Persuasion')");
                 fs::copy(path_ + "-wal", kept);
                 write(path_, bytes().replace(200, 3896, 3896, '\x7F'));
                 sqlite3_db_config(killed.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
             }
             fs::rename(kept, path_ + "-wal");
         }}};
    for (const auto& [reason, make] : cases) {
        SCOPED_TRACE(reason);
        for (const auto& left : {fs::path(path_), backups_}) fs::remove_all(left);
        make();
        const std::string before = bytes();
        try {
            database opened(path_, shelf);
            static_cast<void>(opened.query_integer("SELECT count(*) FROM books"));
            ADD_FAILURE() << "accepted";
        } catch (const error& refused) {
            const std::string text = refused.what();
            EXPECT_NE(text.find(reason), text.npos) << text;
            EXPECT_NE(text.find(path_), text.npos) << text;
            EXPECT_NE(text.find("ove "), text.npos) << "no way out: " << text;
        }
        EXPECT_EQ(bytes(), before);
    }
}

TEST_F(database_file, of_an_older_format_is_put_aside_and_brought_up_to_date) {
    constexpr const char* one_step[] = {"ALTER TABLE books ADD COLUMN author TEXT; UPDATE books SET author = 'Austen'"};
    constexpr const char* broken_step[] = {"UPDATE books SET title = ''; UPDATE books SET nothing = 1"};
    const format old{shelf.application_id, 1, shelf.schema, "shelf"};
    { database(path_, old).execute("INSERT INTO books VALUES('Persuasion')"); }
    const auto before = bytes();
    EXPECT_THROW(database(path_, {shelf.application_id, 2, shelf.schema, "shelf"}), error) << "nobody knows the way";
    EXPECT_THROW(database(path_, {shelf.application_id, 2, shelf.schema, "shelf", broken_step}), error);
    EXPECT_EQ(database(path_, old).query_integer("SELECT count(*) FROM books WHERE title <> ''"), 2);
    EXPECT_EQ(bytes(), before);

    fs::remove_all(backups_);
    constexpr const char* new_schema = "CREATE TABLE books (title TEXT, author TEXT);";
    const format fresh{shelf.application_id, 2, new_schema, "shelf", one_step};
    { const database upgrading(path_, fresh); }
    const database upgraded(path_, fresh);
    EXPECT_EQ(mode(backups_), 0700U);
    EXPECT_EQ(upgraded.query_integer("SELECT count(*) FROM books WHERE author = 'Austen'"), 2);
    const auto copy = fs::directory_iterator(backups_)->path();
    EXPECT_TRUE(copy.filename().string().ends_with("-format-1.sqlite")) << copy;
    EXPECT_EQ(database(copy, old).query_integer("SELECT count(*) FROM books"), 2);
}

TEST_F(database_file, is_copied_whole_or_not_at_all_and_old_copies_go) {
    const database source(path_, shelf);
    write(path("notes.txt"), "beside");
    fs::create_directory(backups_);
    // The last one was made by a wrong clock.
    for (const int year : {2001, 2002, 2003, 2004, 2005, 2006, 2007, 9001})
        for (const char* end : {"-test.sqlite", "-test.notes.txt"})
            write(backups_ / ("shelf-" + std::to_string(year) + "0102-030405" + end), "old");
    const char* const others[] = {"shelf-mine.sqlite", "shelf-20010102-030405-other.sqlite"};
    for (const char* other : others) write(backups_ / other, "");
    write(backups_ / "shelf-20010102-030405-test.sqlite.part-wal", "killed");

    EXPECT_THROW(back_up(source, "test", path("missing.txt")), std::runtime_error);
    ostrevan::synced.clear();
    const auto copy = back_up(source, "test", path("notes.txt"));
    EXPECT_EQ(ostrevan::synced.back(), backups_);
    EXPECT_TRUE(ostrevan::synced.front().ends_with("-test.notes.txt.part")) << ostrevan::synced.front();
    EXPECT_EQ(database(copy, shelf).query_integer("SELECT count(*) FROM books"), 1);
    std::size_t databases = 0, notes = 0;
    for (const auto& entry : fs::directory_iterator(backups_)) {
        const auto name = entry.path().filename().string();
        databases += name.ends_with("-test.sqlite") ? 1 : 0;
        notes += name.ends_with("-test.notes.txt") ? 1 : 0;
        EXPECT_EQ(name.find(".part"), name.npos) << name;
        EXPECT_FALSE(name.ends_with("-test.sqlite") && (name.starts_with("shelf-2001") || name.starts_with("shelf-9")))
            << name;
    }
    EXPECT_EQ(databases, 7U);
    EXPECT_EQ(notes, 7U);
    for (const char* other : others) EXPECT_TRUE(fs::exists(backups_ / other)) << other;
    for (const char* day : {"20231115", "20231130", "20240204", "20240205", "20240211", "20250102"})
        for (const char* hour : {"-010203", "-040506"})
            write(backups_ / ("shelf-" + std::string(day) + hour + "-daily.sqlite"), "");
    EXPECT_TRUE(back_up_once_a_day(source));
    EXPECT_FALSE(back_up_once_a_day(source));
    std::string kept;
    for (const auto& each : stored_copies(path_))
        if (each.reason == daily && each.time < "2026") kept += each.time.substr(2, 8) + " ";
    EXPECT_EQ(kept, "250102-0 240211-0 240205-0 240204-0 231130-0 231115-0 ");
    const auto is_daily = [](const auto& entry) {
        return entry.path().string().ends_with("-daily.sqlite") && mode(entry.path()) == 0600U &&
               fs::file_size(entry.path()) != 0;
    };
    EXPECT_EQ(std::ranges::count_if(fs::directory_iterator(backups_), is_daily), 1);
}

}  // namespace
