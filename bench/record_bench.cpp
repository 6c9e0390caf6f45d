#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <latch>
#include <span>
#include <thread>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "quorvel/store/pcdb.h"

namespace {

using bench::million;
using keys = std::vector<std::uint64_t>;

keys keys_in_random_order(unsigned seed) {
    const auto& all = bench::records_of_a_million().keys;
    keys chosen;
    for (const std::size_t number : bench::random_order(million, seed)) chosen.push_back(all[number]);
    return chosen;
}

/// A round reads a part of the million, to be short; the next round reads another part.
constexpr std::size_t reads = 50'000;

template <typename Item>
std::span<const Item> part(const std::vector<Item>& all, std::size_t round) {
    return std::span(all).subspan(round % (million / reads) * reads, reads);
}

void read_records(std::span<const std::uint64_t> chosen) {
    for (const std::uint64_t key : chosen) benchmark::DoNotOptimize(quorvel::PCDB::GetByKey(key));
}

void read_array(const bench::record_array& array, std::span<const std::size_t> order) {
    std::array<std::byte, 48> copy;
    for (const std::size_t number : order) {
        array.read(number, copy.data());
        benchmark::DoNotOptimize(copy);
    }
}

/// Mean time per thread when both work at once.
template <typename Work>
double seconds_beside_each_other(Work work) {
    std::array<double, 2> times{};
    std::latch start(2);
    const auto run = [&](std::size_t number) {
        start.arrive_and_wait();
        times[number] = bench::seconds_of([&] { work(number); });
    };
    std::jthread other([&] { run(1); });
    run(0);
    other.join();
    return (times[0] + times[1]) / 2;
}

void one_record_through_the_database(benchmark::State& state) {
    const auto chosen = keys_in_random_order(2);
    const auto order = bench::random_order(million, 3);
    const bench::bench_player player(bench::records_of_a_million().profile);
    const bench::record_array array;
    bench::ratio ratio(state, 8, bench::typical::least);
    std::size_t round = 0;
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] { read_array(array, part(order, round)); });
        ratio.add(floor_time, bench::seconds_of([&] { read_records(part(chosen, round)); }));
        ++round;
    }
    ratio.report("48 bytes somewhere in an array");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(reads));
}

/// The floor is one thread reading alone. `array_ratio` shows what two threads cost the machine itself.
void records_from_two_threads(benchmark::State& state) {
    const std::array chosen{keys_in_random_order(2), keys_in_random_order(4)};
    const std::array orders{bench::random_order(million, 3), bench::random_order(million, 5)};
    const bench::bench_player player(bench::records_of_a_million().profile);
    const bench::record_array array;
    bench::ratio ratio(state, 1.3, bench::typical::least), array_ratio(state, 1.3, bench::typical::least);
    std::size_t round = 0;
    for (auto _ : state) {
        array_ratio.add(
            bench::seconds_of([&] { read_array(array, part(orders[0], round)); }),
            seconds_beside_each_other([&](std::size_t number) { read_array(array, part(orders[number], round)); }));
        const double alone = bench::seconds_of([&] { read_records(part(chosen[0], round)); });
        ratio.add(alone, seconds_beside_each_other([&](std::size_t number) { read_records(part(chosen[number], round)); }));
        ++round;
    }
    ratio.report("one thread alone");
    state.counters["array_ratio"] = array_ratio.value();
}

BENCHMARK(one_record_through_the_database)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(100);
BENCHMARK(records_from_two_threads)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(100);

}  // namespace
