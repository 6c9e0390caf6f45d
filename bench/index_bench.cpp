#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <latch>
#include <numeric>
#include <optional>
#include <random>
#include <thread>

#include "bench/ratio.h"
#include "player/index/index_store.h"
#include "player/sqlite/database.h"

namespace {

namespace fs = std::filesystem;
using ostrevan::index::index_store;

constexpr nuv::guid plays = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
constexpr std::uint64_t million = 1'000'000;

std::uint64_t key_of(std::uint64_t number) { return (number + 1) * 0x9E3779B97F4A7C15ULL; }

void print_failure(const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); }

/// A folder in the working directory, removed at exit.
const fs::path& folder() {
    static const struct temporary {
        fs::path path;
        temporary() {
            std::string pattern = fs::current_path() / "index_bench_XXXXXX";
            path = mkdtemp(pattern.data());
        }
        ~temporary() { fs::remove_all(path); }
    } made;
    return made.path;
}

void write_records(index_store& store, std::uint64_t count) {
    std::array<std::byte, 40> data{};
    auto transaction = store.begin();
    for (std::uint64_t i = 0; i < count; ++i) {
        std::memcpy(data.data(), &i, sizeof i);
        transaction.write(plays, key_of(i), data);
    }
    transaction.commit();
}

/// A closed database with `count` records.
fs::path database_with(std::uint64_t count) {
    const fs::path path = folder() / (std::to_string(count) + ".sqlite");
    if (!fs::exists(path)) {
        index_store store(path, print_failure);
        write_records(store, count);
        store.flush();
    }
    return path;
}

std::vector<std::uint64_t> random_order(unsigned seed) {
    std::vector<std::uint64_t> order(million);
    std::iota(order.begin(), order.end(), 0);
    std::ranges::shuffle(order, std::mt19937_64(seed));
    return order;
}

/// The floor for reads: 48 bytes anywhere in an array of the same length.
class array_floor {
public:
    array_floor() : slots_(million) {}

    void read(const std::vector<std::uint64_t>& order) const {
        slot copy;
        for (const std::uint64_t number : order) {
            std::memcpy(&copy, &slots_[number], sizeof copy);
            benchmark::DoNotOptimize(copy);
        }
    }

private:
    using slot = std::array<std::uint64_t, 6>;
    std::vector<slot> slots_;
};

void read_store(const index_store& store, const std::vector<std::uint64_t>& keys) {
    std::array<std::byte, 40> data;
    for (const std::uint64_t key : keys) {
        if (store.read(plays, key, data.data(), data.size()) != data.size()) std::abort();
        benchmark::DoNotOptimize(data);
    }
}

std::vector<std::uint64_t> keys_in(std::vector<std::uint64_t> order) {
    std::ranges::transform(order, order.begin(), key_of);
    return order;
}

void one_record_read(benchmark::State& state) {
    const index_store store(database_with(million), print_failure);
    static_cast<void>(store.keys(plays));
    const auto order = random_order(1);
    const auto keys = keys_in(random_order(2));
    const array_floor floor;
    bench::ratio ratio(state, 8);
    for (auto _ : state) {
        const double floor_time = bench::processor_seconds_of([&] { floor.read(order); });
        ratio.add(floor_time, bench::processor_seconds_of([&] { read_store(store, keys); }));
    }
    ratio.report("48 bytes somewhere in an array");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(million));
}

/// Mean processor time per thread when both work at once.
template <typename Work>
double seconds_beside_each_other(Work work) {
    std::array<double, 2> times{};
    std::latch start(2);
    const auto run = [&](unsigned number) {
        start.arrive_and_wait();
        times[number] = bench::processor_seconds_of([&] { work(number); });
    };
    std::jthread other([&] { run(1); });
    run(0);
    other.join();
    return (times[0] + times[1]) / 2;
}

/// The floor is one thread reading alone. `array_ratio` shows what two threads cost the machine itself.
void one_record_read_from_two_threads(benchmark::State& state) {
    const index_store store(database_with(million), print_failure);
    static_cast<void>(store.keys(plays));
    const std::array keys{keys_in(random_order(2)), keys_in(random_order(3))};
    const std::array orders{random_order(4), random_order(5)};
    const array_floor floor;
    bench::ratio ratio(state, 1.3);
    double array_alone = 0, array_together = 0;
    for (auto _ : state) {
        const double alone = bench::processor_seconds_of([&] { read_store(store, keys[0]); });
        ratio.add(alone, seconds_beside_each_other([&](unsigned number) { read_store(store, keys[number]); }));
        array_alone += bench::processor_seconds_of([&] { floor.read(orders[0]); });
        array_together += seconds_beside_each_other([&](unsigned number) { floor.read(orders[number]); });
    }
    ratio.report("one thread alone");
    state.counters["array_ratio"] = array_together / array_alone;
}

/// The floor is a bare 4K write into an existing file, with fdatasync.
void durable_commit(benchmark::State& state) {
    const fs::path path = folder() / "durable.sqlite";
    index_store store(path, print_failure);
    static_cast<void>(store.keys(plays));
    constexpr int blocks = 1024;
    const int file = open((folder() / "floor").c_str(), O_RDWR | O_CREAT, 0600);
    const std::vector<char> block(4096, 'x');
    for (int i = 0; i < blocks; ++i)
        if (pwrite(file, block.data(), block.size(), i * 4096) != 4096) std::abort();
    fdatasync(file);

    std::array<std::byte, 40> data{};
    bench::ratio ratio(state, 2.5);
    std::uint64_t number = 0;
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] {
            if (pwrite(file, block.data(), block.size(), static_cast<off_t>(number % blocks) * 4096) != 4096) std::abort();
            if (fdatasync(file) != 0) std::abort();
        });
        ratio.add(floor_time, bench::seconds_of([&] {
                      store.write(plays, key_of(number), data);
                      store.flush();
                  }));
        ++number;
    }
    ratio.report("4K write with fdatasync");
    close(file);
}

/// The floor is stepping through the rows with SQLite alone.
void load_of_a_million(benchmark::State& state) {
    const fs::path path = database_with(million);
    bench::ratio ratio(state, 3);
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] {
            const ostrevan::sqlite::format any{
                .application_id = 0x4F737449, .version = 1, .schema = "", .contents = "index"};
            ostrevan::sqlite::database database(path.string(), any);
            auto rows = database.prepare("SELECT key, data FROM records");
            while (rows.step()) benchmark::DoNotOptimize(rows.blob(1).data());
        });
        std::optional<index_store> store;
        ratio.add(floor_time, bench::seconds_of([&] {
                      store.emplace(path, print_failure);
                      static_cast<void>(store->keys(nuv::guid()));  // waits for the load
                  }));
    }
    ratio.report("stepping through the rows with SQLite alone");
}

/// The floor is the same with ten thousand records.
void start_to_first_answer_with_a_million(benchmark::State& state) {
    const fs::path small = database_with(10'000), large = database_with(million);
    const auto first_answer = [](const fs::path& path) {
        std::optional<index_store> store;
        std::array<std::byte, 40> data;
        return bench::seconds_of([&] {
            store.emplace(path, print_failure);
            if (store->read(plays, key_of(7), data.data(), data.size()) != data.size()) std::abort();
        });
    };
    bench::ratio ratio(state, 1.5);
    for (auto _ : state) {
        const double floor_time = first_answer(small);
        ratio.add(floor_time, first_answer(large));
    }
    ratio.report("the same with ten thousand");
}

/// The floor is writing the same rows, sorted, with SQLite alone in one transaction.
void durable_commit_of_a_million(benchmark::State& state) {
    bench::ratio ratio(state, 1.5);
    std::vector<std::int64_t> keys;
    for (std::uint64_t i = 0; i < million; ++i) keys.push_back(static_cast<std::int64_t>(key_of(i)));
    std::ranges::sort(keys);
    const std::array<std::byte, 40> data{};
    for (auto _ : state) {
        const fs::path bare = folder() / "bare.sqlite", path = folder() / "commit.sqlite";
        fs::remove(bare);
        fs::remove(path);
        const double floor_time = bench::seconds_of([&] {
            const ostrevan::sqlite::format format{.application_id = 1,
                                                  .version = 1,
                                                  .schema =
                                                      "CREATE TABLE records (index_id INTEGER, key INTEGER, last_seen "
                                                      "INTEGER, data BLOB, PRIMARY KEY (index_id, key)) WITHOUT ROWID",
                                                  .contents = "bare"};
            ostrevan::sqlite::database database(bare.string(), format);
            ostrevan::sqlite::transaction transaction(database);
            auto row = database.prepare("INSERT INTO records VALUES (1, ?, 1, ?)");
            for (const std::int64_t key : keys) row.bind(1, key).bind(2, data).run();
            transaction.commit();
        });
        index_store store(path, print_failure);
        ratio.add(floor_time, bench::seconds_of([&] {
                      write_records(store, million);
                      store.flush();
                  }));
    }
    ratio.report("sorted rows with SQLite alone");
}

BENCHMARK(one_record_read)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(one_record_read_from_two_threads)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(durable_commit)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(150);
BENCHMARK(load_of_a_million)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(start_to_first_answer_with_a_million)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(9);
BENCHMARK(durable_commit_of_a_million)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
