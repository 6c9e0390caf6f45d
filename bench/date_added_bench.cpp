#include <benchmark/benchmark.h>

#include <filesystem>

#include "bench/bare_rows.h"
#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "ostrevan/library.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"

namespace {

namespace fs = std::filesystem;
using bench::million;

/// Makes every key and writes the rows with SQLite alone.
void bare_stamping(const fs::path& path, const quorvel::record_blob& data) {
    const auto key_function = quorvel::FindMapping(quorvel::active_mapping_guid);
    std::vector<bench::keyed_record> records;
    records.reserve(million);
    for (const auto& track : bench::new_tracks().items()) {
        const auto snapshot = track->info();
        records.emplace_back(key_function->key_of(snapshot->info(), track->location()), data);
    }
    bench::write_sorted_rows(path, records);
}

/// From the notification of the new tracks to the last date on disk.
void dates_of_a_million_tracks(benchmark::State& state) {
    static_cast<void>(bench::new_tracks());
    bench::ratio ratio(state, 1.7);
    for (auto _ : state) {
        const auto profile = bench::new_folder();
        bench::bench_player player(profile);
        const auto data = quorvel::encode_record({.added = 1});
        const double floor_time = bench::seconds_of([&] { bare_stamping(profile / "bare.sqlite", data); });
        ratio.add(floor_time, bench::seconds_of([&] {
                      bench::add_to_library(player);
                      player.loop.run_until_idle();
                      player.index.save_now(quorvel::statistics_index_guid);
                  }));
        if (player.refreshes != 1 || player.refreshed_keys != million) state.SkipWithError("not every track was stamped");
    }
    ratio.report("every key + sorted rows with SQLite alone");
}

BENCHMARK(dates_of_a_million_tracks)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
