#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <semaphore>
#include <thread>
#include <utility>
#include <vector>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "ostrevan/statistics_collector.h"
#include "player/library/track.h"
#include "player/services/tag_edit_news.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"

namespace {

using bench::million;
using steady = std::chrono::steady_clock;

constexpr steady::duration longest_idle = std::chrono::seconds(2);

/// In milliseconds.
struct waits {
    double longest = 0;
    double processor = 0;  ///< the longest computation of the main thread alone, without other programs
};

/// Runs `work` beside the main loop and meanwhile posts requests to the main thread, at most a thousand per second. Returns
/// the longest time from posting to completion.
waits longest_wait(bench::bench_player& player, const std::function<void()>& work,
                   const std::function<void(std::function<void()>)>& ask) {
    std::atomic<bool> done = false;
    waits found;
    double computed = bench::processor_seconds();
    std::thread asking([&, busy = ostrevan::core::main_loop::activity(player.loop)] {
        while (!done) {
            std::binary_semaphore answered(0);
            const auto asked = steady::now();
            ask([&] {
                const double now = bench::processor_seconds();
                found.processor = std::max(found.processor, 1000 * (now - std::exchange(computed, now)));
                found.longest =
                    std::max(found.longest, std::chrono::duration<double, std::milli>(steady::now() - asked).count());
                answered.release();
            });
            answered.acquire();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    std::thread working([&, busy = ostrevan::core::main_loop::activity(player.loop)] {
        work();
        done = true;
    });
    player.loop.run_until_idle();
    asking.join();
    working.join();
    return found;
}

/// A posted callback that reads a record.
waits longest_callback(bench::bench_player& player, const std::function<void()>& work) {
    const auto track = bench::make_tracks(1, 4)[0];
    return longest_wait(player, work, [&](std::function<void()> answer) {
        player.loop.post([answer = std::move(answer), &track] {
            benchmark::DoNotOptimize(quorvel::PCDB::Get(*track));
            answer();
        });
    });
}

/// The wait of a play until it is counted.
waits longest_play(bench::bench_player& player, const std::function<void()>& work) {
    const auto track = bench::make_tracks(1, 4)[0];
    auto& collector = player.service<ostrevan::playback_statistics_collector>();
    return longest_wait(player, work, [&](std::function<void()> answer) {
        collector.on_item_played(track);
        player.loop.post(std::move(answer));  // callbacks keep their order
    });
}

/// An operation on a million tracks, started on the main thread; it ends when their keys are redrawn and saved.
struct operation {
    std::function<void(bench::bench_player&)> prepare;
    std::function<void(bench::bench_player&)> ask;
};

/// [another thread]
void run_operation(bench::bench_player& player, const operation& what) {
    player.refreshed_keys = 0;
    player.loop.post([&] { what.ask(player); });
    while (player.refreshed_keys < million) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    player.index.save_now(quorvel::statistics_index_guid);
}

using wait_of = waits (*)(bench::bench_player&, const std::function<void()>&);

/// In a player of its own.
waits wait_during(const operation& what, wait_of wait) {
    bench::bench_player player(bench::new_folder());
    what.prepare(player);
    return wait(player, [&] { run_operation(player, what); });
}

/// The longest wait for a posted callback that reads, during work on a million tracks; 1 is 50 ms. `processor_ms` excludes
/// other programs. `play_ms` is the longest wait of a play, which must get its turn to write; `idle_ms` is the longest wait
/// beside a thread that only computes, caused by the machine itself.
void measure_waits(benchmark::State& state, const operation& what) {
    static_cast<void>(bench::new_tracks());
    waits callback;
    for (auto _ : state) {
        const auto start = steady::now();
        callback = wait_during(what, longest_callback);
        const auto length = steady::now() - start;
        state.counters["play_ms"] = wait_during(what, longest_play).longest;
        bench::bench_player idle(bench::new_folder());
        state.counters["idle_ms"] =
            longest_callback(idle, [&] {
                for (const auto end = steady::now() + std::min(length, longest_idle); steady::now() < end;) {
                }
            }).longest;
        state.SetIterationTime(callback.longest / 1000);
    }
    state.SetLabel("50 ms");
    state.counters["ratio"] = callback.longest / 50;
    state.counters["goal"] = 1;
    state.counters["longest_ms"] = callback.longest;
    state.counters["processor_ms"] = callback.processor;
}

void stamp_all(bench::bench_player& player) {
    bench::add_to_library(player);
    player.loop.run_until_idle();
}

void main_thread_while_stamping(benchmark::State& state) {
    measure_waits(state, {.prepare = [](bench::bench_player&) {}, .ask = bench::add_to_library});
}

/// Gives every track the tags of another one, as when a program has edited the whole library.
const std::vector<ostrevan::library::track_edit>& edits() {
    static const auto made = [] {
        std::vector<ostrevan::library::track_edit> list;
        const auto edited = bench::make_tracks(million, 5);
        for (std::size_t i = 0; i < edited.size(); ++i) {
            const auto& track = bench::new_tracks().items()[i];
            list.push_back({ostrevan::library::track_ptr(static_cast<ostrevan::library::track*>(track.get())), track->info(),
                            edited[i]->info()});
        }
        return list;
    }();
    return made;
}

void main_thread_while_keys_change(benchmark::State& state) {
    static std::vector<ostrevan::library::track_edit> seen;  // as from a scan
    measure_waits(state,
                  {.prepare =
                       [](bench::bench_player& player) {
                           stamp_all(player);
                           seen = edits();
                       },
                   .ask =
                       [](bench::bench_player& player) {
                           static std::optional<ostrevan::services::tag_edit_news> news;  // must outlive what it posts
                           news.emplace(player.loop, player.services, [](std::span<const ostrevan::tag_edit>) {})
                               .tell(std::move(seen));
                       }});
}

/// A rating is one operation on the main thread by contract: nothing else runs before every track is rated.
void main_thread_while_rating(benchmark::State& state) {
    measure_waits(state, {.prepare = stamp_all, .ask = [](bench::bench_player&) {
                              quorvel::PCDB::SetRating(bench::new_tracks(), quorvel::rating_of_stars(4));
                          }});
}

BENCHMARK(main_thread_while_stamping)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(main_thread_while_keys_change)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(main_thread_while_rating)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
