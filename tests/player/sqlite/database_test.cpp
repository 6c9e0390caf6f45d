#include "player/sqlite/database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "player/sqlite/backup.h"

namespace {

using namespace ostrevan::sqlite;
namespace fs = std::filesystem;

constexpr format shelf{0x53484C46, 2, "CREATE TABLE books(title TEXT); INSERT INTO books VALUES('Emma');", "shelf"};

class database_file : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "sqliteXXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        path_ = (folder_ / "shelf.sqlite").string();
    }
    void TearDown() override { fs::remove_all(folder_); }

    [[nodiscard]] std::string bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void write(const std::string& contents) const { write_file(path_, contents); }
    static void write_file(const fs::path& path, const std::string& contents) {
        std::ofstream(path, std::ios::binary) << contents;
    }

    fs::path folder_;
    std::string path_;
};

TEST_F(database_file, is_made_where_there_was_none_and_where_a_killed_process_left_an_empty_file) {
    for (const bool is_left_empty : {false, true}) {
        fs::remove(path_);
        if (is_left_empty) write("");
        { EXPECT_EQ(database(path_, shelf).query_integer("SELECT count(*) FROM books"), 1); }
        EXPECT_EQ(database(path_, shelf).query_integer("SELECT count(*) FROM books"), 1);
    }
}

TEST_F(database_file, that_cannot_be_used_is_named_and_left_as_it_is) {
    struct bad_file {
        const char* reason;
        std::function<void()> make;
    };
    const auto with_header = [&](std::int32_t id, std::int32_t version) {
        return [=, this] { database(path_, {id, version, shelf.schema, "shelf"}); };
    };
    const auto foreign = [&](const char* sql) {
        sqlite3* raw = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &raw), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(raw, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(raw);
    };
    const auto changed = [&](const char* sql) {
        return [&, sql] {
            { database(path_, shelf); }
            foreign(sql);
        };
    };
    const bad_file cases[] = {
        {"not a database", [&] { write("TITLE: my books\n" + std::string(4000, 'x')); }},
        {"newer version", with_header(shelf.application_id, 3)},
        {"another program", with_header(0x1234, 2)},
        {"another program", with_header(0, 0)},
        {"another program", [&] { foreign("PRAGMA user_version = 7"); }},
        {"not a file", [&] { ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0); }},
        {"not a file", [&] { fs::create_directory(path_); }},
        {"(trigger theft)", changed("CREATE TRIGGER theft AFTER UPDATE ON books BEGIN DELETE FROM books; END")},
        {"(view others)", changed("CREATE VIEW others AS SELECT * FROM books")},
        {"other tables", changed("ALTER TABLE books ADD COLUMN price")},
        {"copies of an earlier one",
         [&] {
             write("");
             fs::create_directory(folder_ / "backup");
             write_file(folder_ / "backup/shelf-20260101-000000-test.sqlite", "");
         }},
        {"malformed",
         [&] {
             { database(path_, shelf); }
             std::string contents = bytes();
             contents.replace(100, 400, 400, '\x7F');
             write(contents);
         }},
        {"malformed",  // and with the log of a killed process
         [&] {
             const fs::path kept = folder_ / "kept";
             {
                 database killed(path_, shelf);
                 killed.execute("INSERT INTO books VALUES('Persuasion')");
                 fs::copy(path_ + "-wal", kept);
                 write(bytes().replace(200, 3896, 3896, '\x7F'));
                 sqlite3_db_config(killed.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
             }
             fs::rename(kept, path_ + "-wal");
         }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        for (const auto& left : {path_, (folder_ / "backup").string()}) fs::remove_all(left);
        each.make();
        const std::string before = fs::is_regular_file(path_) ? bytes() : "";
        try {
            database opened(path_, shelf);
            static_cast<void>(opened.query_integer("SELECT count(*) FROM books"));
            ADD_FAILURE() << "accepted";
        } catch (const error& refused) {
            const std::string text = refused.what();
            EXPECT_NE(text.find(each.reason), text.npos) << text;
            EXPECT_NE(text.find(path_), text.npos) << text;
            EXPECT_NE(text.find("ove "), text.npos) << "no way out: " << text;
        }
        EXPECT_EQ(fs::is_regular_file(path_) ? bytes() : "", before);
    }
}

TEST_F(database_file, keeps_any_bytes_and_drops_a_transaction_that_was_not_committed) {
    database opened(path_, shelf);
    auto insert = opened.prepare("INSERT INTO books VALUES(?1)");
    const std::string odd("a\0\xFF", 3);
    {
        transaction dropped(opened);
        insert.bind(1, std::string_view("lost")).run();
    }
    {
        transaction kept(opened);
        insert.bind(1, std::as_bytes(std::span(odd))).run();
        kept.commit();
    }
    auto query = opened.prepare("SELECT title FROM books WHERE title != 'Emma'");
    ASSERT_TRUE(query.step());
    const auto blob = query.blob(0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(blob.data()), blob.size()), odd);
    EXPECT_FALSE(query.step());
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

    fs::remove_all(folder_ / "backup");
    constexpr const char* new_schema = "CREATE TABLE books (title TEXT, author TEXT);";
    const database upgraded(path_, {shelf.application_id, 2, new_schema, "shelf", one_step});
    EXPECT_EQ(upgraded.query_integer("SELECT count(*) FROM books WHERE author = 'Austen'"), 2);
    const auto copies = fs::directory_iterator(folder_ / "backup");
    const auto copy = copies->path();
    EXPECT_TRUE(copy.filename().string().ends_with("-format-1.sqlite")) << copy;
    EXPECT_EQ(database(copy, old).query_integer("SELECT count(*) FROM books"), 2);
}

TEST_F(database_file, is_copied_whole_or_not_at_all_and_old_copies_go) {
    const database source(path_, shelf);
    const auto folder = folder_ / "backup";
    write_file(folder_ / "notes.txt", "beside");
    fs::create_directory(folder);
    // The last one was made by a wrong clock.
    for (const int year : {2001, 2002, 2003, 2004, 2005, 2006, 2007, 9001})
        for (const char* end : {"-test.sqlite", "-test.notes.txt"})
            write_file(folder / ("shelf-" + std::to_string(year) + "0102-030405" + end), "old");
    const char* const others[] = {"shelf-mine.sqlite", "shelf-20010102-030405-other.sqlite"};
    for (const char* other : others) write_file(folder / other, "");
    write_file(folder / "shelf-20010102-030405-test.sqlite.part", "killed");

    EXPECT_THROW(back_up(source, "test", folder_ / "missing.txt"), std::runtime_error);
    const auto copy = back_up(source, "test", folder_ / "notes.txt");
    EXPECT_EQ(database(copy, shelf).query_integer("SELECT count(*) FROM books"), 1);
    std::size_t databases = 0;
    std::size_t notes = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const auto name = entry.path().filename().string();
        databases += name.ends_with("-test.sqlite") ? 1 : 0;
        notes += name.ends_with("-test.notes.txt") ? 1 : 0;
        EXPECT_FALSE(name.ends_with(".part")) << name;
        EXPECT_FALSE(name.ends_with("-test.sqlite") && (name.starts_with("shelf-2001") || name.starts_with("shelf-9")))
            << name;
    }
    EXPECT_EQ(databases, 7U);
    EXPECT_EQ(notes, 7U);
    for (const char* other : others) EXPECT_TRUE(fs::exists(folder / other)) << other;
    back_up_once_a_day(source, "test");
    back_up_once_a_day(source, "daily");
    back_up_once_a_day(source, "daily");
    const auto daily = [](const auto& entry) { return entry.path().string().ends_with("-daily.sqlite"); };
    EXPECT_EQ(std::ranges::count_if(fs::directory_iterator(folder), daily), 1);
    for (const auto& entry : fs::directory_iterator(folder))
        EXPECT_TRUE(!daily(entry) || fs::status(entry).permissions() == fs::perms(0600));
}

TEST_F(database_file, that_cannot_be_written_is_read_with_what_its_log_holds) {
    { database(path_, shelf); }
    EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0600));
    const auto locked = folder_ / "locked";
    {
        database open(path_, shelf);
        open.execute("INSERT INTO books VALUES('Persuasion')");
        fs::create_directory(locked);
        for (const char* end : {"", "-wal"}) fs::copy(path_ + end, (locked / "shelf.sqlite").string() + end);
    }
    fs::permissions(folder_, fs::perms(0755));
    const auto read = [&] {
        if (geteuid() == 0 && (::chown((locked / "shelf.sqlite").c_str(), 65534, 65534) != 0 ||
                               ::chown((locked / "shelf.sqlite-wal").c_str(), 65534, 65534) != 0 || ::setuid(65534) != 0))
            _exit(2);
        database copy((locked / "shelf.sqlite").string(), shelf);
        if (!copy.is_read_only() || copy.query_integer("SELECT count(*) FROM books") != 2) _exit(3);
        try {
            copy.execute("INSERT INTO books VALUES('lost')");
        } catch (const error& refused) {
            std::fputs(refused.what(), stderr);
            _exit(0);
        }
        _exit(4);
    };
    fs::permissions(locked, fs::perms(0555));
    EXPECT_EXIT(read(), testing::ExitedWithCode(0), "locked/shelf.sqlite.*writable");
    fs::permissions(locked, fs::perms(0755));
}

}  // namespace
