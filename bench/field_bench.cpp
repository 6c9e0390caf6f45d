#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "bench/bare_digest.h"
#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "ostrevan/field_provider.h"
#include "quorvel/store/key.h"
#include "quorvel/store/record.h"

namespace {

/// Keeps the last text, as a cell of a list does.
class cell final : public ostrevan::titleformat_text_out {
public:
    void write(const nuv::guid& /*kind*/, const char* text, std::size_t length) override {
        size_ = std::min(length == whole_text ? std::strlen(text) : length, text_.size());
        std::memcpy(text_.data(), text, size_);
        benchmark::DoNotOptimize(text_);
    }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

private:
    std::array<char, 64> text_{};
    std::size_t size_ = 0;
};

/// Tracks with records, in random order. A round covers a part of them, to be short, and the next round another part.
class rows {
public:
    rows() : order_(bench::random_order(bench::records_of_a_million().tracks.size(), 8)) {}

    template <typename Work>
    double seconds_for_each(Work work) {
        const auto& tracks = bench::records_of_a_million().tracks;
        if (next_ + count > order_.size()) next_ = 0;
        const std::span part(&order_[std::exchange(next_, next_ + count)], count);
        return bench::seconds_of([&] {
            for (const std::size_t number : part) work(number, *tracks[number]);
        });
    }
    static constexpr std::size_t count = 2000;

private:
    std::vector<std::size_t> order_;
    std::size_t next_ = 0;
};

std::size_t field_named(const ostrevan::field_provider& provider, std::string_view name) {
    for (std::size_t i = 0; i < provider.get_field_count(); ++i)
        if (provider.get_field_name(i) == name) return i;
    std::abort();
}

using text = std::array<char, 20>;

/// The floor is making the key, reading the record and copying a ready text. `bare_ratio` compares with digesting ready
/// bytes and reading an array instead.
void one_time_field(benchmark::State& state) {
    rows list;
    const auto ready_bytes = bench::key_bytes_of(bench::records_of_a_million().tracks);
    const std::vector<text> ready_texts(ready_bytes.size());
    const bench::record_array array;
    bench::bare_digest digest;
    bench::bench_player player(bench::records_of_a_million().profile);
    auto& provider = player.service<ostrevan::field_provider>();
    const std::size_t field = field_named(provider, "last_played");
    const auto key_function = quorvel::FindMapping(quorvel::active_mapping_guid);

    cell out;
    quorvel::record_blob record;
    text copy;
    bench::ratio ratio(state, 1.5, bench::typical::least), bare_ratio(state, 1.5, bench::typical::least);
    for (auto _ : state) {
        const double bare = list.seconds_for_each([&](std::size_t number, const ostrevan::metadb_handle&) {
            std::array<std::uint64_t, 6> slot;
            benchmark::DoNotOptimize(digest.of(ready_bytes[number]));
            array.read(number, slot.data());
            benchmark::DoNotOptimize(slot);
            benchmark::DoNotOptimize(copy = ready_texts[number]);
        });
        const double floor_time = list.seconds_for_each([&](std::size_t number, const ostrevan::metadb_handle& track) {
            const auto snapshot = track.info();
            const auto key = key_function->key_of(snapshot->info(), track.location());
            benchmark::DoNotOptimize(player.index.read(quorvel::statistics_index_guid, key, record.data(), record.size()));
            benchmark::DoNotOptimize(record);
            benchmark::DoNotOptimize(copy = ready_texts[number]);
        });
        const double time = list.seconds_for_each([&](std::size_t, ostrevan::metadb_handle& track) {
            if (!provider.process_field(field, &track, out) || out.size() != 19) std::abort();
        });
        ratio.add(floor_time, time);
        bare_ratio.add(bare, time);
    }
    ratio.report("key + read + copy of 20 bytes");
    state.counters["bare_ratio"] = bare_ratio.value();
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(list.count));
}

/// The floor is one time field.
void eight_fields_of_a_row(benchmark::State& state) {
    rows list;
    bench::bench_player player(bench::records_of_a_million().profile);
    auto& provider = player.service<ostrevan::field_provider>();
    const std::size_t field = field_named(provider, "last_played");
    const std::size_t fields = provider.get_field_count();

    cell out;
    bench::ratio ratio(state, 2.5, bench::typical::least);
    for (auto _ : state) {
        const double floor_time = list.seconds_for_each(
            [&](std::size_t, ostrevan::metadb_handle& track) { provider.process_field(field, &track, out); });
        ratio.add(floor_time, list.seconds_for_each([&](std::size_t, ostrevan::metadb_handle& track) {
            for (std::size_t i = 0; i < fields; ++i) provider.process_field(i, &track, out);
        }));
    }
    ratio.report("one time field");
    state.counters["fields"] = static_cast<double>(fields);
}

BENCHMARK(one_time_field)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(300);
BENCHMARK(eight_fields_of_a_row)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(300);

}  // namespace
