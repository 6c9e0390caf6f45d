#include <benchmark/benchmark.h>

#include <optional>
#include <random>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "player/index/index_database.h"
#include "player/summary/figures.h"
#include "quorvel/store/key.h"

namespace {

using bench::million;
using ostrevan::metadb_handle;
using ostrevan::metadb_handle_ptr;

constexpr std::size_t library_size = 100'000;
constexpr std::int64_t first_time = 1'100'000'000, twenty_years = 631'000'000;

std::optional<std::uint64_t> key_of(const metadb_handle& track) { return quorvel::KeyOf(track); }

/// A profile with a million plays over twenty years.
struct listened {
    std::filesystem::path profile = bench::new_folder();
    std::vector<metadb_handle_ptr> tracks = bench::make_tracks(library_size, 6);

    listened() {
        bench::bench_player player(profile);
        std::mt19937_64 random(21);
        for (std::size_t i = 0; i < million; ++i) {
            const auto& track = *tracks[random() % library_size];
            player.records.note(ostrevan::index::listen{
                .time = first_time + static_cast<std::int64_t>(i) * twenty_years / std::int64_t{million},
                .path = track.location().path,
                .seconds = 100,
                .is_counted = true,
                .keys = {{quorvel::statistics_index_guid, *key_of(track)}}});
        }
        player.records.flush();
    }
};

/// Reads what a summary needs, and nothing else.
void read_rows(const std::filesystem::path& profile) {
    ostrevan::sqlite::database database(profile / "index.sqlite", ostrevan::index::index_format());
    std::int64_t sum = 0;
    auto keys = database.prepare("SELECT listen, key FROM listen_keys");
    while (keys.step()) sum += keys.integer(0) + keys.integer(1);
    auto rows = database.prepare("SELECT id, time, path, subsong, counted, act FROM listens ORDER BY id");
    while (rows.step()) sum += rows.integer(1) + static_cast<std::int64_t>(rows.text(2).size());
    benchmark::DoNotOptimize(sum);
}

void summary_of_a_million_plays(benchmark::State& state) {
    static const listened made;
    bench::bench_player player(made.profile);
    bench::ratio ratio(state, 3);
    for (auto _ : state) {
        const double floor = bench::seconds_of([&] { read_rows(made.profile); });
        const double seconds = bench::seconds_of([&] {
            const ostrevan::summary::track_set known(made.tracks, player.fields(), key_of);
            ostrevan::summary::summary_maker maker({}, known, true);
            auto journal = player.records.read_journal();
            journal.for_each_listen(quorvel::statistics_index_guid, [&](const auto& heard) { maker.hear(heard); });
            const auto figures = std::move(maker).finish();
            if (figures.plays.dated != million || figures.without_track != 0) std::abort();
        });
        ratio.add(floor, seconds);
        state.counters["seconds"] = seconds;
    }
    ratio.report("reading the same rows of the database");
}

BENCHMARK(summary_of_a_million_plays)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
