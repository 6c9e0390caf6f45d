#include "player/history/undo.h"

#include <atomic>
#include <fstream>

#include "player/history/restore.h"
#include "player/index/index_database.h"
#include "tests/player/index/records.h"

namespace ostrevan::history {
namespace {

using index::index_store;
using index::moods;
using index::plays;
using index::record_of;
using index::stored;

class undo_test : public index::index_folder {
protected:
    /// Anew, when it is open.
    void open(std::unique_ptr<index_store>& store, index_store::options settings = {}) {
        store.reset();
        settings.cause = [this] { return cause_; };
        settings.clock = [this] { return now_.load(); };
        store = std::make_unique<index_store>(path_, fail_on_report, std::move(settings));
    }
    /// A commit that gives the keys from `first` on records of a version.
    void put(index_store& store, const char* cause, std::uint64_t first, std::uint64_t count, std::uint64_t version) {
        cause_.text = cause;
        auto transaction = store.begin();
        for (auto key = first; key < first + count; ++key) transaction.write(plays, key, record_of(key, version));
        transaction.commit();
    }
    static std::size_t number(const std::vector<index::index_changes>& changes) {
        std::size_t sum = 0;
        for (const auto& each : changes) sum += each.records.size();
        return sum;
    }
    static undone undo(index_store& store) { return take_back(store, next_to_undo(store, 1).at(0)); }

    index::change_cause cause_;
    std::atomic<std::int64_t> now_ = 1'000'000'000;
};

TEST_F(undo_test, gives_back_what_an_act_changed_where_nothing_else_has_changed_it_and_can_itself_be_taken_back) {
    constexpr std::uint64_t many = 10'000;
    std::unique_ptr<index_store> store;
    open(store);
    put(*store, "first", 1, many, 1);
    open(store);  // the records before the next changes are not all in memory
    cause_.act = 7;
    put(*store, "mass", 1, many, 2);
    put(*store, "mass", many, 2, 3);
    cause_.act = 0;
    put(*store, "single", 5, 1, 4);

    EXPECT_EQ(number(undo(*store).restored), 1U);
    EXPECT_EQ(stored(*store, plays, 5), record_of(5, 2)) << "as the mass left it";
    put(*store, "later", 6, 1, 5);
    const auto mass = next_to_undo(*store, 9).at(1);
    EXPECT_EQ(mass.cause, "mass");
    const auto done = take_back(*store, mass);
    EXPECT_EQ(number(done.restored), many) << "both commits of the act";
    ASSERT_EQ(number(done.left), 1U);
    EXPECT_EQ(done.left[0].records[0].key, 6U);
    EXPECT_EQ(stored(*store, plays, many), record_of(many, 1));
    EXPECT_EQ(stored(*store, plays, many + 1), std::nullopt);
    EXPECT_EQ(stored(*store, plays, 6), record_of(6, 5));

    EXPECT_EQ(next_to_undo(*store, 9).at(1).cause, "first") << "what is taken back is not offered again";
    open(store);
    const auto redo = next_to_redo(*store);
    ASSERT_TRUE(redo);
    EXPECT_EQ(number(take_back(*store, *redo).restored), many);
    EXPECT_EQ(stored(*store, plays, many + 1), record_of(many + 1, 3));
    EXPECT_FALSE(next_to_redo(*store));
    EXPECT_EQ(next_to_undo(*store, 9).at(1).cause, "mass");

    store->note(
        {.time = now_.load(), .path = "/a.flac", .seconds = 200.5, .is_counted = true, .keys = {{plays, 5}, {moods, 5}}});
    auto journal = store->read_journal();
    ASSERT_EQ(journal.listens_of(plays, 5).size(), 1U);
    EXPECT_EQ(journal.listens_of(plays, 5)[0].path, "/a.flac");
    EXPECT_TRUE(journal.listens_of(plays, 6).empty());
    std::string story;
    for (const auto& each : journal.changes_of(plays, 5)) story += each.by.cause + (each.change.before ? "+" : "-") + " ";
    EXPECT_EQ(story, "redo 2+ undo 2+ undo 4+ single+ mass+ first- ");
}

TEST_F(undo_test, forgets_the_oldest_acts_by_age_and_size_but_never_the_newest) {
    const auto causes = [](index_store& store) {
        std::string all;
        for (const auto& each : store.read_journal().latest(9)) all += each.cause + " ";
        return all;
    };
    std::unique_ptr<index_store> store;
    open(store);
    put(*store, "old", 1, 1, 1);
    now_ += 3 * 24 * 60 * 60;
    put(*store, "big", 1, 1'000, 2);
    put(*store, "small", 1, 1, 3);
    open(store);
    EXPECT_EQ(store->keys(plays).size(), 1'000U);
    EXPECT_EQ(causes(*store), "small big old ");
    open(store, {.journal_age = std::chrono::days(2)});
    EXPECT_EQ(store->keys(plays).size(), 1'000U);
    open(store, {.journal_size = 200});
    EXPECT_EQ(store->keys(plays).size(), 1'000U);
    open(store);
    EXPECT_EQ(causes(*store), "small ");
    EXPECT_EQ(stored(*store, plays, 1), record_of(1, 3));
}

TEST_F(undo_test, a_copy_is_restored_as_an_act_and_only_when_it_is_whole) {
    std::unique_ptr<index_store> store;
    open(store);
    put(*store, "first", 1, 500, 1);
    const auto copy = store->back_up("test");
    const auto bytes = content(copy);
    put(*store, "second", 400, 200, 2);
    store->write(plays, 1, {});
    const auto found = from_copy(*store, copy);
    EXPECT_EQ(number(found), 201U);
    cause_.text = "restore";
    EXPECT_EQ(number(restore(*store, copy).changes), 201U);
    EXPECT_EQ(store->keys(plays).size(), 500U);
    EXPECT_EQ(stored(*store, plays, 450), record_of(450, 1));
    EXPECT_EQ(content(copy), bytes);
    EXPECT_EQ(number(undo(*store).restored), 201U);
    EXPECT_EQ(stored(*store, plays, 450), record_of(450, 2));
    EXPECT_EQ(stored(*store, plays, 1), std::nullopt);

    auto damaged = bytes;
    damaged.replace(8 * 4096, 4096, 4096, '\x55');
    std::ofstream(copy, std::ios::binary) << damaged;
    EXPECT_THROW(restore(*store, copy), std::runtime_error);
    EXPECT_EQ(stored(*store, plays, 450), record_of(450, 2));
}

TEST_F(undo_test, a_damaged_journal_costs_no_record) {
    std::unique_ptr<index_store> store;
    open(store);
    put(*store, "first", 1, 300, 1);
    store.reset();
    {
        sqlite::database file(path_.string(), index::index_format());
        file.execute("UPDATE bulk_changes SET changes = x'0102'");
    }
    open(store);
    EXPECT_THROW(undo(*store), sqlite::error);
    EXPECT_EQ(stored(*store, plays, 3), record_of(3, 1));
    put(*store, "second", 1, 1, 2);
    store->flush();
    EXPECT_EQ(number(undo(*store).restored), 1U);

    store.reset();
    const auto page = sqlite::database(path_.string(), index::index_format())
                          .query_integer("SELECT rootpage FROM sqlite_schema WHERE name = 'operations'");
    std::ofstream(path_, std::ios::binary | std::ios::in).seekp((page - 1) * 4096) << std::string(4096, 'x');
    for (const std::uint64_t version : {3, 4}) {
        std::string told;
        cause_.text = "third";
        index_store damaged(path_, [&](const std::string& text) { told = text; }, {.cause = [this] { return cause_; }});
        damaged.write(plays, 1, record_of(1, version));
        damaged.flush();
        EXPECT_NE(told.find("The journal in"), told.npos) << told;
        EXPECT_THROW(damaged.read_journal().latest(1), sqlite::error);
    }
    EXPECT_EQ(stored(index_store(path_, fail_on_report), plays, 1), record_of(1, 4));
}

}  // namespace
}  // namespace ostrevan::history
