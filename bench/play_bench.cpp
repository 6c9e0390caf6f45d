#include <benchmark/benchmark.h>

#include "bench/bench_player.h"
#include "bench/block_file.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "ostrevan/statistics_collector.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"

namespace {

/// From the notification of a play until it is on disk, with its journal. The floor is a bare 4K write with fdatasync.
void durable_play(benchmark::State& state) {
    bench::bench_player player(bench::new_folder());
    bench::block_file floor(bench::folder() / "blocks");
    auto& collector = player.service<ostrevan::playback_statistics_collector>();
    const auto tracks = bench::make_tracks(1000, 2);
    for (const auto& track : tracks) collector.on_item_played(track);
    player.loop.run_until_idle();
    player.records.flush();

    bench::ratio ratio(state, 2.5);
    std::size_t number = 0;
    for (auto _ : state) {
        const auto& track = tracks[number++ % tracks.size()];
        const double floor_time = bench::seconds_of([&] { floor.write_durably(); });
        ratio.add(floor_time, bench::seconds_of([&] {
                      collector.on_item_played(track);
                      player.loop.run_until_idle();
                      player.note_play(*track);
                      player.index.save_now(quorvel::statistics_index_guid);
                  }));
    }
    if (quorvel::PCDB::Get(*tracks[0]).play_count < 2) state.SkipWithError("the plays were not counted");
    ratio.report("4K write with fdatasync");
}

BENCHMARK(durable_play)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(150);

}  // namespace
