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

/// A record that differs from others in count and time, as after a play.
quorvel::record_blob record_of(std::size_t number) {
    return quorvel::encode_record(
        {.play_count = number, .first_played = 1, .last_played = 133'500'000'000'000'000 + number});
}

/// A profile with a million plays over twenty years, and the journal of the last two.
struct listened {
    std::filesystem::path profile = bench::new_folder();
    std::vector<metadb_handle_ptr> tracks = bench::make_tracks(library_size, 6);

    listened() {
        bench::bench_player player(profile);
        std::mt19937_64 random(21);
        std::vector<ostrevan::index::known_track> known;
        for (const auto& track : tracks)
            known.push_back({.index = quorvel::statistics_index_guid,
                             .key = *key_of(*track),
                             .artist = "An artist of some name",
                             .album = "An album of some name",
                             .title = "A title of some name",
                             .path = track->location().path});
        player.records.note(std::move(known));
        for (std::size_t i = 0; i < million; ++i) {
            const auto& track = *tracks[random() % library_size];
            player.records.note(ostrevan::index::listen{
                .time = first_time + static_cast<std::int64_t>(i) * twenty_years / std::int64_t{million},
                .path = track.location().path,
                .seconds = 100,
                .is_counted = true,
                .keys = {{quorvel::statistics_index_guid, *key_of(track)}}});
            if (i >= million - million / 10)
                player.records.write(quorvel::statistics_index_guid, *key_of(track), record_of(i));
        }
        player.records.flush();
    }
};

const listened& a_million_plays() {
    static const listened made;
    return made;
}

/// What `history TRACK` reads. The floor is the time that a user does not notice.
void history_at_a_million_plays(benchmark::State& state) {
    const auto& made = a_million_plays();
    bench::bench_player player(made.profile);
    bench::ratio ratio(state, 1);
    std::size_t number = 0;
    for (auto _ : state) {
        const auto key = *key_of(*made.tracks[number++ * 7919 % library_size]);
        ratio.add(0.05, bench::seconds_of([&] {
                      auto journal = player.records.read_journal();
                      std::size_t events = 0;
                      for (const auto each : journal.successors_in(quorvel::statistics_index_guid).leading_to(key))
                          events += journal.listens_of(quorvel::statistics_index_guid, each).size() +
                                    journal.changes_of(quorvel::statistics_index_guid, each).size();
                      if (events == 0) state.SkipWithError("no story");
                  }));
    }
    ratio.report("50 ms");
}

/// Twenty thousand plays and three thousand ratings. The floor is 10 MB.
void journal_of_a_year(benchmark::State& state) {
    constexpr std::size_t plays = 20'000, ratings = 3'000, tracks = 5'000;
    constexpr double megabytes = 10e6;
    bench::ratio ratio(state, 1);
    const auto all = bench::make_tracks(tracks, 8);
    for (auto _ : state) {
        const auto profile = bench::new_folder();
        const auto size = [&] { return static_cast<double>(std::filesystem::file_size(profile / "index.sqlite")); };
        {
            bench::bench_player player(profile);
            for (const auto& track : all)
                player.records.write(quorvel::statistics_index_guid, *key_of(*track), record_of(0));
        }
        const auto before = size();
        {
            bench::bench_player player(profile);
            for (std::size_t i = 0; i < plays + ratings; ++i) {
                const auto& track = *all[i * 7919 % tracks];
                player.records.write(quorvel::statistics_index_guid, *key_of(track), record_of(i + 1));
                if (i < plays) player.note_play(track);
            }
        }
        ratio.add(megabytes, size() - before);
        state.counters["megabytes"] = (size() - before) / 1e6;
    }
    ratio.report("10 MB");
}

/// Reads what a summary needs, and nothing else.
void read_rows(const std::filesystem::path& profile) {
    ostrevan::sqlite::database database(profile / "index.sqlite", ostrevan::index::index_format());
    std::int64_t sum = 0;
    auto keys = database.prepare("SELECT listen, key FROM listen_keys");
    while (keys.step()) sum += keys.integer(0) + keys.integer(1);
    auto followed = database.prepare("SELECT key, successor FROM known_tracks WHERE successor IS NOT NULL");
    while (followed.step()) sum += followed.integer(0);
    auto undos = database.prepare("SELECT act, undoes FROM operations WHERE undoes IS NOT NULL");
    while (undos.step()) sum += undos.integer(0);
    auto rows = database.prepare("SELECT id, time, path, subsong, counted, act FROM listens ORDER BY id");
    while (rows.step()) sum += rows.integer(1) + static_cast<std::int64_t>(rows.text(2).size());
    benchmark::DoNotOptimize(sum);
}

void summary_of_a_million_plays(benchmark::State& state) {
    const auto& made = a_million_plays();
    bench::bench_player player(made.profile);
    bench::ratio ratio(state, 3);
    for (auto _ : state) {
        const double floor = bench::seconds_of([&] { read_rows(made.profile); });
        const double seconds = bench::seconds_of([&] {
            const ostrevan::summary::track_set known(made.tracks, player.fields(), key_of);
            ostrevan::summary::summary_maker maker({}, known, true);
            auto journal = player.records.read_journal();
            const auto followed = journal.successors_in(quorvel::statistics_index_guid);
            journal.for_each_listen(quorvel::statistics_index_guid, [&](ostrevan::index::brief_listen heard) {
                if (heard.key) heard.key = followed.first_of(*heard.key, [&](auto key) { return known.has(key); });
                maker.hear(heard);
            });
            const auto figures = std::move(maker).finish();
            if (figures.plays.dated != million || figures.without_track != 0) std::abort();
        });
        ratio.add(floor, seconds);
        state.counters["seconds"] = seconds;
    }
    ratio.report("reading the same rows of the database");
}

BENCHMARK(history_at_a_million_plays)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(journal_of_a_year)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(summary_of_a_million_plays)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
