#include "player/index/index_store.h"

#include <atomic>
#include <limits>
#include <thread>

#include "player/index/index_database.h"
#include "player/services/index_manager.h"
#include "tests/player/index/records.h"

namespace ostrevan::index {
namespace {

using index_store_test = index_folder;
constexpr std::uint64_t highest_key = std::numeric_limits<std::uint64_t>::max();

TEST_F(index_store_test, answers_the_same_before_while_and_after_loading) {
    const std::vector<std::pair<std::uint64_t, std::size_t>> records = {
        {0, 40}, {1, 1}, {2, 39}, {3, 40}, {4, 41}, {5, index_store::max_record_size}, {highest_key, 40}};
    const auto check = [&](const index_store& store) {
        for (const auto& [key, size] : records) EXPECT_EQ(stored(store, plays, key), record_of(key, 7, size)) << key;
        record_bytes buffer(50, std::byte{0xEE});
        EXPECT_EQ(store.read(plays, 4, buffer.data(), 30), 41U) << "the whole size, though less fits";
        EXPECT_EQ(std::ranges::count(buffer, std::byte{0xEE}), 20);
        EXPECT_EQ(stored(store, plays, 6), std::nullopt);
        EXPECT_EQ(stored(store, moods, 3), std::nullopt);
    };
    {
        index_store store(path_, fail_on_report);
        for (const auto& [key, size] : records) store.write(plays, key, record_of(key, 0, 40));
        for (const auto& [key, size] : records) store.write(plays, key, record_of(key, 7, size));
        EXPECT_THROW(store.write(plays, 1, record_of(1, 0, index_store::max_record_size + 1)), std::invalid_argument);
        check(store);
    }
    const index_store reopened(path_, fail_on_report);
    check(reopened);
    EXPECT_EQ(reopened.keys(plays), (std::vector<std::uint64_t>{0, 1, 2, 3, 4, 5, highest_key}));
    EXPECT_EQ(reopened.indexes(), std::vector{plays});
    check(reopened);
}

TEST_F(index_store_test, never_shows_half_a_record_or_an_older_one_while_loading_and_growing) {
    constexpr std::uint64_t keys = 10'000;
    const auto write_all = [](index_store& store, std::uint64_t count, std::uint64_t version) {
        store_transaction transaction = store.begin();
        for (std::uint64_t key = 1; key <= count; ++key) transaction.write(plays, key, record_of(key, version));
        transaction.commit();
    };
    {
        index_store store(path_, fail_on_report);
        write_all(store, keys + 1, 1);
    }
    {
        index_store store(path_, fail_on_report);
        store.write(plays, keys + 1, {});
        EXPECT_EQ(store.keys(plays).size(), keys) << "loading brought back what was erased";
    }
    index_store store(path_, fail_on_report);
    std::atomic<bool> is_over = false;
    std::vector<std::jthread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            std::vector<std::uint64_t> newest(keys + 1, 1);
            for (std::uint64_t key = 1; !is_over; key = key % keys + 1) {
                std::array<std::uint64_t, 5> data{};
                ASSERT_EQ(store.read(plays, key, data.data(), sizeof data), sizeof data) << key;
                ASSERT_GE(data[1], newest[key]) << key;
                newest[key] = data[1];
                ASSERT_EQ(data, (std::array{key, newest[key], key, newest[key], key}));
            }
        });
    for (std::uint64_t version = 2; version < 6; ++version) write_all(store, keys * version / 2, version);
    EXPECT_EQ(store.keys(plays).size(), keys * 5 / 2);
    is_over = true;
}

TEST_F(index_store_test, finds_records_old_only_after_their_whole_time_and_drops_only_what_it_is_told) {
    constexpr std::int64_t day = 86'400;
    std::int64_t today = 100 * day;
    {
        index_store store(path_, fail_on_report, {.clock = [&] { return today; }});
        store.register_index(plays, 7 * day * 10'000'000ULL - 1, "one.dll");
        for (const std::uint64_t key : {1, 2, 3, 4, 5}) store.write(plays, key, record_of(key));
        store.write(moods, 1, record_of(1));
        today += 6 * day;
        store.write(plays, 2, record_of(2, 1));                          // a write marks as seen
        store.touch(plays, std::array<std::uint64_t, 2>{3, 77}, today);  // so does a track; 77 has no record
        EXPECT_TRUE(store.old_keys(plays, {}, 108 * day).empty()) << "a mark may be a day old";
    }
    index_store store(path_, fail_on_report);
    const std::array<std::uint64_t, 2> in_library{4, 77};
    EXPECT_EQ(store.old_keys(plays, in_library, 108 * day + 1), (std::vector<std::uint64_t>{1, 5}));
    EXPECT_TRUE(store.old_keys(moods, {}, 1000 * day).empty()) << "not registered";
    EXPECT_EQ(store.keys(plays).size(), 5U) << "nothing is dropped by looking";
    store.erase(plays, std::array<std::uint64_t, 1>{5});
    EXPECT_EQ(stored(store, plays, 5), std::nullopt);
    store.remove_index(plays);
    EXPECT_TRUE(store.old_keys(plays, {}, 1000 * day).empty());
}

TEST_F(index_store_test, lets_nobody_else_register_an_index_in_this_run_or_a_later_one) {
    for (int run = 0; run < 2; ++run) {
        index_store store(path_, fail_on_report);
        store.register_index(plays, 100, "one.dll");
        EXPECT_THROW(store.register_index(plays, 1, "other.dll"), std::runtime_error);
        store.register_index(moods, 1, "other.dll");
        EXPECT_TRUE(store.registered(plays));
        store.remove_index(plays);
        EXPECT_FALSE(store.registered(plays));
        EXPECT_THROW(store.register_index(plays, 1, "other.dll"), std::runtime_error);
    }
}

class any_client : public index_client {
    std::uint64_t key_of(const file_info&, const playable_location&) override { return 0; }
};

TEST_F(index_store_test, keeps_a_registration_when_a_component_gives_up_its_own_that_was_refused) {
    index_store store(path_, fail_on_report);
    std::string caller = "one.dll";
    service_uncounted_t<services::index_manager_impl> service(
        store, [&](const index_client&) { return caller; }, services::index_manager_impl::redraw{});
    service.register_index(service_new<any_client>(), plays, 1);
    caller = "other.dll";
    EXPECT_THROW(service.register_index(service_new<any_client>(), plays, 1), std::runtime_error);
    service.remove_index(plays);
    EXPECT_EQ(service.registrations().size(), 1U);
    EXPECT_TRUE(store.registered(plays));
    store.write(plays, 7, record_of(7));
    service.drop({{plays, {7}}});
    EXPECT_TRUE(store.keys(plays).empty());
    const auto copy = std::filesystem::directory_iterator(path("backup"))->path();
    EXPECT_EQ(stored(index_store(copy, fail_on_report), plays, 7), record_of(7)) << "put aside before";
    service.remove_index(plays);
    EXPECT_FALSE(store.registered(plays));
}

TEST_F(index_store_test, brings_files_of_every_earlier_format_up_to_date_and_refuses_a_later_one) {
    std::string sql =
        "CREATE TABLE indexes (id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE, retention INTEGER) STRICT;"
        "CREATE TABLE records (index_id INTEGER NOT NULL, key INTEGER NOT NULL, last_seen INTEGER NOT NULL, data BLOB NOT "
        "NULL,"
        " PRIMARY KEY (index_id, key)) STRICT, WITHOUT ROWID;"
        "INSERT INTO indexes VALUES (7, 'C653739F-14B3-4EF2-819B-A3E2883230AE', 100);"
        "INSERT INTO records VALUES (7, 1, 5, x'0102'), (7, -1, 5, zeroblob(40));";
    const char* const additions[] = {
        "ALTER TABLE indexes ADD COLUMN owner TEXT; UPDATE indexes SET owner = 'one.dll'",
        "; CREATE TABLE operations (id INTEGER PRIMARY KEY, act INTEGER NOT NULL, time INTEGER NOT NULL, undoes INTEGER,"
        " cause TEXT NOT NULL) STRICT; CREATE INDEX operations_by_act ON operations (act);"
        "CREATE TABLE changes (index_id INTEGER NOT NULL, key INTEGER NOT NULL, operation INTEGER NOT NULL,"
        " change BLOB NOT NULL, PRIMARY KEY (index_id, key, operation)) STRICT, WITHOUT ROWID;"
        "CREATE INDEX changes_by_operation ON changes (operation);"
        "CREATE TABLE bulk_changes (operation INTEGER NOT NULL, index_id INTEGER NOT NULL, first_key INTEGER NOT NULL,"
        " last_key INTEGER NOT NULL, changes BLOB NOT NULL) STRICT;"
        "CREATE INDEX bulk_changes_by_operation ON bulk_changes (operation);"
        "CREATE TABLE listens (id INTEGER PRIMARY KEY, time INTEGER NOT NULL, path TEXT NOT NULL, subsong INTEGER NOT NULL,"
        " seconds REAL NOT NULL, player TEXT NOT NULL, counted INTEGER NOT NULL, act INTEGER NOT NULL) STRICT;"
        "CREATE TABLE listen_keys (index_id INTEGER NOT NULL, key INTEGER NOT NULL, listen INTEGER NOT NULL,"
        " PRIMARY KEY (index_id, key, listen)) STRICT, WITHOUT ROWID;"
        "INSERT INTO listens VALUES (3, 9, '/a.flac', 0, 1.5, '', 1, 0); INSERT INTO listen_keys VALUES (7, 1, 3)"};
    for (int version = 1; version <= 3; ++version) {
        path_ = path(std::to_string(version));
        sqlite::database(path_.string(), {0x4F737449, version, sql.c_str(), "older"});
        for (int start = 0; start < 2; ++start) {
            index_store store(path_, fail_on_report, {.cause = [] { return change_cause{.text = "test"}; }});
            EXPECT_EQ(store.keys(plays), (std::vector{std::uint64_t{1}, highest_key})) << version;
            EXPECT_EQ(stored(store, plays, 1), (record_bytes{std::byte{1}, std::byte{2}})) << version;
            EXPECT_TRUE(store.registered(plays)) << version;
            EXPECT_EQ(store.read_journal().listens_of(plays, 1).size(), version == 3 ? 1U : 0U);
            store.write(plays, highest_key, record_of(highest_key, static_cast<std::uint64_t>(start)));
            EXPECT_EQ(store.read_journal().latest(9).size(), start + 1U) << version;
        }
        EXPECT_EQ(sqlite::database(path_.string(), index_format()).query_integer("PRAGMA user_version"), 4);
        if (version < 3) sql += additions[version - 1];
    }
    path_ = path("later");
    sqlite::database(path_.string(), {0x4F737449, 5, sql.c_str(), "later"});
    const auto bytes = file_bytes();
    const auto message = failure_of([&] { index_store(path_, fail_on_report); });
    EXPECT_NE(message.find("newer version of this program (format 5, this one knows 4). Use the newer"), message.npos)
        << message;
    EXPECT_EQ(file_bytes(), bytes);
}

TEST_F(index_store_test, puts_a_copy_aside_before_the_first_change_of_a_day) {
    for (std::uint64_t change = 0; change < 3; ++change)
        index_store(path_, fail_on_report, {.daily_copies = true}).write(plays, change, record_of(change));
    std::vector<std::filesystem::path> copies(std::filesystem::directory_iterator(path("backup")), {});
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(index_store(copies.front(), fail_on_report).keys(plays), std::vector<std::uint64_t>{0}) << "as it was before";

    for (const std::uint64_t version : {1, 2}) {  // new records are none to lose
        index_store store(path_, fail_on_report, {.daily_copies = true});
        auto transaction = store.begin();
        for (std::uint64_t key = 0; key < index_store::bulk_size; ++key)
            transaction.write(moods, key, record_of(key, version));
        transaction.commit();
    }
    copies.assign(std::filesystem::directory_iterator(path("backup")), {});
    ASSERT_EQ(copies.size(), 2U);
    const auto bulk = std::ranges::find_if(copies, [](const auto& each) { return each.string().ends_with("bulk.sqlite"); });
    EXPECT_EQ(stored(index_store(*bulk, fail_on_report), moods, 5), record_of(5, 1));

    std::filesystem::remove_all(path("backup"));
    std::ofstream(path("backup")) << "in the way";
    std::string told;
    index_store(path_, [&](const std::string& text) { told = text; }, {.daily_copies = true}).write(plays, 9, record_of(9));
    EXPECT_NE(told.find("saved without it"), told.npos) << told;
    EXPECT_EQ(index_store(path_, fail_on_report).keys(plays).size(), 4U);
}

}  // namespace
}  // namespace ostrevan::index
