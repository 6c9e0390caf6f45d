#include <benchmark/benchmark.h>

#include "bench/bare_digest.h"
#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "quorvel/store/key.h"

namespace {

/// The first key of a snapshot, which is remembered later. The floor is the digest of the ready bytes of the key. Only a
/// thousand tracks, so that memory does not matter.
void key_of_a_track(benchmark::State& state) {
    bench::bench_player player(bench::new_folder());
    const auto tracks = bench::make_tracks(1000, 1);
    const auto ready = bench::key_bytes_of(tracks);
    bench::bare_digest digest;
    bench::ratio ratio(state, 1.5, bench::typical::least);
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] {
            for (const auto& bytes : ready) benchmark::DoNotOptimize(digest.of(bytes));
        });
        ratio.add(floor_time, bench::seconds_of([&] {
                      for (const auto& track : tracks)
                          benchmark::DoNotOptimize(quorvel::KeyOf(track->info()->info(), track->location()));
                  }));
    }
    ratio.report("MD5 over the ready bytes");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(tracks.size()));
}

BENCHMARK(key_of_a_track)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(301);

}  // namespace
