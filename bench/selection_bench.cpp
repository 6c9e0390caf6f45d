#include <benchmark/benchmark.h>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "quorvel/host/selection_summary.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"

namespace {

using quorvel::record_blob;
using quorvel::statistics_index_guid;

/// The minimum of any operation on tracks: make the key and read the record.
class bare_reader {
public:
    explicit bare_reader(bench::bench_player& player)
        : index_(player.index), key_function_(quorvel::FindMapping(quorvel::active_mapping_guid)) {}

    std::uint64_t read(const ostrevan::metadb_handle& track, record_blob& record) const {
        const auto snapshot = track.info();
        const auto key = key_function_->key_of(snapshot->info(), track.location());
        if (index_.read(statistics_index_guid, key, record.data(), record.size()) != record.size()) std::abort();
        benchmark::DoNotOptimize(record);
        return key;
    }

private:
    const ostrevan::index_manager& index_;
    ostrevan::index_client_ptr key_function_;
};

ostrevan::metadb_handle_list selection_of(std::size_t count) {
    const auto& tracks = bench::records_of_a_million().tracks;
    ostrevan::metadb_handle_list chosen;
    for (const std::size_t number : bench::random_order(tracks.size(), 9)) {
        if (chosen.get_count() == count) break;
        chosen.items().push_back(tracks[number]);
    }
    return chosen;
}

void properties_of_a_selection(benchmark::State& state) {
    const auto selection = selection_of(100'000);
    bench::bench_player player(bench::records_of_a_million().profile);
    const bare_reader bare(player);
    bench::ratio ratio(state, 1.5, bench::typical::least);
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] {
            record_blob record;
            for (const auto& track : selection.items()) bare.read(*track, record);
        });
        ratio.add(floor_time, bench::seconds_of([&] {
                      if (quorvel::summarise(selection).play_count == 0) std::abort();
                  }));
    }
    ratio.report("key + read of each");
}

/// Until the new ratings are visible; the disk follows in the background. The floor also writes each record, in one
/// transaction.
void rating_of_many_tracks(benchmark::State& state) {
    const auto selection = selection_of(10'000);
    bench::bench_player player(bench::records_of_a_million().profile);
    const bare_reader bare(player);
    bench::ratio ratio(state, 1.6, bench::typical::least);
    std::uint32_t stars = 0;
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([&] {
            record_blob record;
            auto transaction = player.records.begin();
            for (const auto& track : selection.items()) {
                const auto key = bare.read(*track, record);
                transaction.write(statistics_index_guid, key, record);
            }
            transaction.commit();
        });
        player.records.flush();
        player.refreshes = 0;
        stars = stars % 5 + 1;
        ratio.add(floor_time,
                  bench::seconds_of([&] { quorvel::PCDB::SetRating(selection, quorvel::rating_of_stars(stars)); }));
        if (player.refreshes != 1) state.SkipWithError("one rating is to give one refresh");
        player.records.flush();
    }
    ratio.report("key + read + write of each, one transaction");
}

BENCHMARK(properties_of_a_selection)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(rating_of_many_tracks)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

}  // namespace
