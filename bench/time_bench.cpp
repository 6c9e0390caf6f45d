#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <ctime>
#include <random>
#include <vector>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "quorvel/store/timestamp.h"

namespace {

constexpr std::uint64_t filetime_second = 10'000'000;
constexpr std::uint64_t filetime_day = 86400 * filetime_second;

/// "00" to "99", one after another.
const std::array<char, 200> pairs = [] {
    std::array<char, 200> made;
    for (std::size_t i = 0; i < 100; ++i) {
        made[2 * i] = static_cast<char>('0' + i / 10);
        made[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return made;
}();

void put(char* out, int number) { std::memcpy(out, &pairs[2 * static_cast<std::size_t>(number)], 2); }

/// The C library's conversion with the fastest formatting of digits.
std::array<char, 20> text_by_localtime(std::uint64_t time) {
    const auto seconds = static_cast<std::time_t>(time / filetime_second) - 11'644'473'600;
    std::tm local;
    localtime_r(&seconds, &local);
    std::array<char, 20> text{"0000-00-00 00:00:00"};
    const int year = local.tm_year + 1900;
    put(&text[0], year / 100);
    put(&text[2], year % 100);
    put(&text[5], local.tm_mon + 1);
    put(&text[8], local.tm_mday);
    put(&text[11], local.tm_hour);
    put(&text[14], local.tm_min);
    put(&text[17], local.tm_sec);
    return text;
}

void compare_formatting(benchmark::State& state, const std::vector<std::uint64_t>& times) {
    bench::use_summer_time();
    for (const std::uint64_t time : times)
        if (quorvel::FormatTimestamp(time).view() != text_by_localtime(time).data()) state.SkipWithError("the texts differ");
    bench::ratio ratio(state, 0.5, bench::typical::least);
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] {
            for (const std::uint64_t time : times) benchmark::DoNotOptimize(text_by_localtime(time));
        });
        ratio.add(floor_time, bench::seconds_of([&] {
                      for (const std::uint64_t time : times) benchmark::DoNotOptimize(quorvel::FormatTimestamp(time));
                  }));
    }
    ratio.report("localtime_r and digits from a table");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(times.size()));
}

void random_times_of_twenty_years(benchmark::State& state) {
    std::mt19937_64 random(5);
    std::vector<std::uint64_t> times(10'000);
    std::ranges::generate(times, [&] { return bench::random_time(random()); });
    compare_formatting(state, times);
}

/// Times as in a list: album by album, each played as a whole, most in the last year.
void times_of_a_library(benchmark::State& state) {
    std::mt19937_64 random(6);
    std::exponential_distribution<double> age(1.0 / 300);            // days
    constexpr std::uint64_t now = 13'379'472'000 * filetime_second;  // 2024-12-23
    std::vector<std::uint64_t> times;
    for (int album = 0; album < 800; ++album) {
        const auto days = static_cast<std::uint64_t>(std::min(age(random), 7000.0) * 1000) * (filetime_day / 1000);
        for (std::uint64_t track = 0; track < 12; ++track) times.push_back(now - days + track * 240 * filetime_second);
    }
    compare_formatting(state, times);
}

BENCHMARK(random_times_of_twenty_years)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(101);
BENCHMARK(times_of_a_library)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(101);

}  // namespace
