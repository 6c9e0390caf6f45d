#include "player/sqlite/database.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

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
    void write(const std::string& contents) const { std::ofstream(path_, std::ios::binary) << contents; }

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
    const bad_file cases[] = {
        {"not a database", [&] { write("TITLE: my books\n" + std::string(4000, 'x')); }},
        {"newer version", with_header(shelf.application_id, 3)},
        {"another program", with_header(0x1234, 2)},
        {"another program", with_header(0, 0)},
        {"malformed",
         [&] {
             { database(path_, shelf); }
             std::string contents = bytes();
             contents.replace(100, 400, 400, '\x7F');
             write(contents);
         }},
        {"malformed",
         [&] {
             { database(path_, shelf); }
             write(bytes().substr(0, 4096));
         }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        fs::remove(path_);
        each.make();
        const std::string before = bytes();
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
        EXPECT_EQ(bytes(), before);
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

}  // namespace
