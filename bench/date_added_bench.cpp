#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <semaphore>
#include <thread>

#include "bench/bare_rows.h"
#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "ostrevan/library.h"
#include "ostrevan/statistics_collector.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"

namespace {

namespace fs = std::filesystem;
using bench::million;
using steady = std::chrono::steady_clock;

const ostrevan::metadb_handle_list& new_tracks() {
    static const ostrevan::metadb_handle_list made(bench::make_tracks(million, 3));
    return made;
}

/// Makes every key, and writes the rows with SQLite alone.
void bare_stamping(const fs::path& path, const quorvel::record_blob& data) {
    const auto key_function = quorvel::FindMapping(quorvel::active_mapping_guid);
    std::vector<bench::keyed_record> records;
    records.reserve(million);
    for (const auto& track : new_tracks().items()) {
        const auto snapshot = track->info();
        records.emplace_back(key_function->key_of(snapshot->info(), track->location()), data);
    }
    bench::write_sorted_rows(path, records);
}

void add_to_library(bench::bench_player& player) {
    player.services.for_each<ostrevan::library_callback>(
        [](ostrevan::library_callback& callback) { callback.on_items_added(new_tracks()); });
}

/// From the player's word that the tracks are in the library until the last date is on the disk.
void dates_of_a_million_tracks(benchmark::State& state) {
    static_cast<void>(new_tracks());
    bench::ratio ratio(state, 1.5);
    for (auto _ : state) {
        const auto profile = bench::new_folder();
        bench::bench_player player(profile);
        const auto data = quorvel::encode_record({.added = 1});
        const double floor_time = bench::seconds_of([&] { bare_stamping(profile / "bare.sqlite", data); });
        ratio.add(floor_time, bench::seconds_of([&] {
                      add_to_library(player);
                      player.loop.run_until_idle();
                      player.index.save_now(quorvel::statistics_index_guid);
                  }));
        if (player.refreshes != 1 || player.refreshed_keys != million) state.SkipWithError("not every track was stamped");
    }
    ratio.report("every key + sorted rows with SQLite alone");
}

/// Runs `work` on the main loop and meanwhile, a thousand times a second at most, asks the main thread for something.
/// Answers the longest time in milliseconds between asking and the end of what was asked for.
double longest_wait(bench::bench_player& player, const std::function<void()>& work,
                    const std::function<void(std::function<void()>)>& ask) {
    std::atomic<bool> done = false;
    steady::duration longest{};
    std::thread asking([&, busy = ostrevan::main_loop::activity(player.loop)] {
        while (!done) {
            std::binary_semaphore answered(0);
            const auto asked = steady::now();
            ask([&] {
                longest = std::max(longest, steady::now() - asked);
                answered.release();
            });
            answered.acquire();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    std::thread saving([&, busy = ostrevan::main_loop::activity(player.loop)] {
        work();
        done = true;
    });
    player.loop.run_until_idle();
    asking.join();
    saving.join();
    return std::chrono::duration<double, std::milli>(longest).count();
}

/// A posted callback that reads a record.
double longest_callback(bench::bench_player& player, const std::function<void()>& work) {
    const auto track = bench::make_tracks(1, 4)[0];
    return longest_wait(player, work, [&](std::function<void()> answer) {
        player.loop.post([answer = std::move(answer), &track] {
            benchmark::DoNotOptimize(quorvel::PCDB::Get(*track));
            answer();
        });
    });
}

/// A play, until it has been counted.
double longest_play(bench::bench_player& player, const std::function<void()>& work) {
    const auto track = bench::make_tracks(1, 4)[0];
    auto& collector = player.service<ostrevan::playback_statistics_collector>();
    return longest_wait(player, work, [&](std::function<void()> answer) {
        collector.on_item_played(track);
        player.loop.post(std::move(answer));  // callbacks keep their order
    });
}

/// Stamps all and returns when that is on the disk. Answers how long the main thread was busy with handing over the list,
/// in milliseconds. [another thread]
double stamp(bench::bench_player& player) {
    double handing_over = 0;
    std::binary_semaphore given(0);
    player.loop.post([&] {
        handing_over = 1000 * bench::seconds_of([&] { add_to_library(player); });
        given.release();
    });
    given.acquire();
    while (player.refreshed_keys < million) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    player.index.save_now(quorvel::statistics_index_guid);
    return handing_over;
}

/// What the main thread needs for a posted callback that reads, at the longest, while a million tracks are stamped: 50 ms
/// are 1. `idle_ms` is the same beside a thread that only computes, which is what the machine itself does to a wait;
/// `play_ms` the longest wait of a play, which has to have its turn to write.
void main_thread_while_stamping(benchmark::State& state) {
    static_cast<void>(new_tracks());
    double callback = 0, play = 0, idle = 0, handing_over = 0;
    for (auto _ : state) {
        const auto start = steady::now();
        {
            bench::bench_player player(bench::new_folder());
            callback =
                std::max(callback, longest_callback(player, [&] { handing_over = std::max(handing_over, stamp(player)); }));
        }
        const auto length = steady::now() - start;
        {
            bench::bench_player player(bench::new_folder());
            play = std::max(play, longest_play(player, [&] { stamp(player); }));
        }
        {
            bench::bench_player player(bench::new_folder());
            idle = std::max(idle, longest_callback(player, [&] {
                                for (const auto end = steady::now() + length; steady::now() < end;) {
                                }
                            }));
        }
        state.SetIterationTime(callback / 1000);
    }
    state.SetLabel("50 ms");
    state.counters["ratio"] = callback / 50;
    state.counters["goal"] = 1;
    state.counters["longest_ms"] = callback;
    state.counters["idle_ms"] = idle;
    state.counters["play_ms"] = play;
    state.counters["handing_over_ms"] = handing_over;
}

BENCHMARK(dates_of_a_million_tracks)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(main_thread_while_stamping)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
