#include <gmock/gmock.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <latch>

#include "tests/player/index/faulty_disk.h"
#include "tests/player/index/records.h"

namespace ostrevan::index {
namespace {

using index_store_fault = index_folder;
using namespace std::chrono_literals;
const index_store::options only_when_asked{.retry_interval = 1h, .busy_timeout = 1ms};

auto tells_of(const std::filesystem::path& path, const char* reason) {
    return testing::AllOf(testing::HasSubstr(path.string()), testing::HasSubstr(reason));
}

TEST_F(index_store_fault, refuses_a_file_with_a_damaged_catalog_and_leaves_it_as_it_is) {
    index_store(path_, fail_on_report).write(plays, 1, record_of(1));
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, "UPDATE indexes SET guid = 'x'", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    const std::string before = file_bytes();
    const auto refusal = [&] { return failure_of([&] { const index_store store(path_, fail_on_report); }); };
    EXPECT_THAT(refusal(), tells_of(path_, "malformed"));
    EXPECT_EQ(file_bytes(), before);
    path_ = path("missing/index.sqlite");
    EXPECT_THAT(refusal(), tells_of(path_, "folder"));
}

TEST_F(index_store_fault, reads_what_may_not_be_written_with_its_log_and_refuses_every_change) {
    const std::filesystem::path locked = path("locked/index.sqlite");
    std::filesystem::create_directory(locked.parent_path());
    std::filesystem::permissions(folder_, std::filesystem::perms(0755));
    {
        index_store store(path_, fail_on_report);
        store.write(plays, 1, record_of(1));
        store.flush();
        for (const char* suffix : {"", "-wal"})
            std::filesystem::copy_file(path_.string() + suffix, locked.string() + suffix);
    }
    const auto use_as_nobody = [&] {
        constexpr uid_t nobody = 65534;
        for (const char* suffix : {"", "-wal"})
            if (geteuid() == 0 && chown((locked.string() + suffix).c_str(), nobody, nobody) != 0) _exit(2);
        if (geteuid() == 0 && setuid(nobody) != 0) _exit(2);
        index_store store(locked, [](const std::string&) { _exit(3); });
        if (stored(store, plays, 1) != record_of(1)) _exit(4);
        store.register_index(plays, 1, "one.dll");
        store.flush();
        const std::function<void()> refused[] = {[&] { store.write(plays, 2, record_of(2)); }, [&] { store.flush(); }};
        for (const auto& work : refused)
            if (failure_of(work).find("locked/index.sqlite\" can only be read") == std::string::npos) _exit(5);
        _exit(stored(store, plays, 2) ? 6 : 0);
    };
    std::filesystem::permissions(locked.parent_path(), std::filesystem::perms(0555));
    EXPECT_EXIT(use_as_nobody(), testing::ExitedWithCode(0), "");
    std::filesystem::permissions(locked.parent_path(), std::filesystem::perms(0755));
}

TEST_F(index_store_fault, leaves_a_file_alone_whose_damage_shows_only_when_it_is_read) {
    {
        index_store store(path_, fail_on_report);
        store_transaction transaction = store.begin();
        for (std::uint64_t key = 1; key <= 2000; ++key) transaction.write(plays, key, record_of(key));
        transaction.commit();
    }
    // There is a write-ahead log, as after a crash: copying it into the file would be a change, too.
    const std::filesystem::path crashed = path("crashed.sqlite");
    {
        index_store store(path_, fail_on_report);
        store.write(plays, 3, record_of(3, 1));
        store.flush();
        for (const char* suffix : {"", "-wal"})
            std::filesystem::copy_file(path_.string() + suffix, crashed.string() + suffix);
    }
    path_ = crashed;
    std::string bytes = file_bytes();
    bytes.replace(20 * 4096, 4096, 4096, '\x55');
    std::ofstream(path_, std::ios::binary) << bytes;
    std::latch reported(1);
    std::string last_report;
    {
        index_store store(
            path_,
            [&](const std::string& text) {
                EXPECT_THAT(text, tells_of(path_, "malformed"));
                last_report = text;
                if (!reported.try_wait()) reported.count_down();
            },
            only_when_asked);
        reported.wait();
        EXPECT_THROW(static_cast<void>(store.keys(plays)), std::runtime_error);
        EXPECT_EQ(stored(store, plays, 1), record_of(1)) << "what can be read is answered";
        store.write(plays, 1, record_of(1, 1));
        EXPECT_EQ(stored(store, plays, 1), record_of(1, 1));
        EXPECT_THROW(store.flush(), std::runtime_error);
    }
    EXPECT_TRUE(last_report.starts_with("The last changes could not be saved and are lost.")) << last_report;
    EXPECT_EQ(file_bytes(), bytes);
}

TEST_F(index_store_fault, loses_nothing_acknowledged_wherever_the_disk_fails) {
    faulty_disk disk;
    const std::filesystem::path copy = path("copy.sqlite");
    for (const int code : {SQLITE_FULL, SQLITE_IOERR_WRITE}) {
        bool was_reached = true;
        for (long step = 0; was_reached; ++step) {
            SCOPED_TRACE(step);
            for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path_.string() + suffix);
            std::atomic<int> reports = 0;
            {
                index_store store(
                    path_, [&](const std::string&) { ++reports; }, only_when_asked);
                store.write(plays, 1, record_of(1));
                store.flush();
                disk.fail_after(step, code);
                for (std::uint64_t key = 2; key < 200; ++key) store.write(plays, key, record_of(key));
                store.write(plays, 1, record_of(1, 1));
                const auto flushed = [&] { return failure_of([&] { store.flush(); }); };
                const auto failure = flushed();
                const bool is_durable = failure == "(no error)";
                EXPECT_TRUE(is_durable || testing::Value(failure, tells_of(path_, "try again"))) << failure;
                EXPECT_EQ(flushed() == "(no error)", is_durable);
                was_reached = disk.has_failed();
                disk.heal();
                EXPECT_EQ(is_durable, !was_reached);
                for (const char* suffix : {"", "-wal"})  // what remains if the machine stops here
                    std::filesystem::copy_file(path_.string() + suffix, copy.string() + suffix,
                                               std::filesystem::copy_options::overwrite_existing);
                const index_store found(copy, fail_on_report);
                EXPECT_TRUE(stored(found, plays, 1) == record_of(1, is_durable) ||
                            stored(found, plays, 1) == record_of(1, 1));
                EXPECT_EQ(stored(store, plays, 199), record_of(199)) << "memory keeps what could not be saved";
                store.flush();
                EXPECT_EQ(reports, was_reached ? 1 : 0);
            }
            const index_store reopened(path_, fail_on_report);
            EXPECT_EQ(stored(reopened, plays, 1), record_of(1, 1));
            EXPECT_EQ(reopened.keys(plays).size(), 199U);
        }
    }
}

/// Acknowledges every number after it is on disk, until it is killed. Each number is a transaction of three records.
[[noreturn]] void write_numbers(const std::filesystem::path& path, std::uint64_t next, int acknowledge) {
    index_store store(path, [](const std::string&) {});
    for (;; ++next) {
        store_transaction transaction = store.begin();
        for (std::uint64_t part = 0; part < 3; ++part) transaction.write(plays, next * 3 + part, record_of(next, part));
        transaction.commit();
        store.flush();
        if (::write(acknowledge, &next, sizeof next) != sizeof next) _exit(1);
    }
}

TEST_F(index_store_fault, loses_nothing_acknowledged_when_killed) {
    std::uint64_t last = 0;
    for (unsigned kill_number = 0; kill_number < 40; ++kill_number) {
        SCOPED_TRACE(kill_number);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) write_numbers(path_, last + 1, ends[1]);
        close(ends[1]);
        // Kills come at the start, between two acknowledgements and a while after one.
        for (unsigned i = 0; i < kill_number % 7; ++i) ASSERT_EQ(::read(ends[0], &last, sizeof last), ssize_t{sizeof last});
        for (std::atomic<unsigned> wait = 0; wait < kill_number * 7919 % 40 * 20'000; ++wait) {
        }
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        while (::read(ends[0], &last, sizeof last) == ssize_t{sizeof last}) {
        }
        close(ends[0]);

        const index_store store(path_, fail_on_report);
        const auto keys = store.keys(plays);
        ASSERT_GE(keys.size(), last * 3);
        ASSERT_EQ(keys.size() % 3, 0U) << "a transaction in part";
        for (std::size_t i = 0; i < keys.size(); ++i) {
            ASSERT_EQ(keys[i], i + 3);
            ASSERT_EQ(stored(store, plays, keys[i]), record_of(keys[i] / 3, keys[i] % 3));
        }
        last = keys.size() / 3;
    }
    EXPECT_GT(last, 40U);
}

}  // namespace
}  // namespace ostrevan::index
