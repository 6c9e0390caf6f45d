#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/bare_rows.h"
#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "quorvel/interchange/entry_writer.h"
#include "quorvel/interchange/import_command.h"
#include "quorvel/store/key.h"
#include "quorvel/store/record_fields.h"
#include "quorvel/store/statistics_index.h"
#include "quorvel/xml/xml_parser.h"

namespace {

using bench::million;

struct statistics_file {
    std::vector<bench::keyed_record> records;
    std::string text;
};

/// A million records with every field, in export order.
statistics_file make_file() {
    statistics_file file;
    file.text = "<PlaybackStatistics Version=\"3.0\" Mapping=\"" + nuv::guid_text(quorvel::active_mapping_guid) + "\">\n";
    std::mt19937_64 random(5);
    std::vector<std::uint64_t> keys(million);
    std::ranges::generate(keys, random);
    std::ranges::sort(keys);
    for (const std::uint64_t key : keys) {
        const auto record = bench::random_record(random);
        file.records.emplace_back(key, quorvel::encode_record(record));
        quorvel::pcdb_export::writeEntry(file.text, key, record, quorvel::all_fields, nullptr);
    }
    file.text += "</PlaybackStatistics>";
    return file;
}

/// Reads the same levels as an import and does nothing with them.
class idle_reader : public Vek::xmlParser {
public:
    explicit idle_reader(Vek::xmlParser* inner) noexcept : inner_(inner) {}
    void onElem(const Vek::xmlContext& context, const char* /*ns*/, const char* /*name*/,
                const Vek::xmlAttributes& attributes, const char* content, std::size_t length) override {
        benchmark::DoNotOptimize(attributes.begin());
        if (inner_ != nullptr) inner_->parse(context, content, length);
    }

private:
    Vek::xmlParser* inner_;
};

void parse_idly(const std::string& text) {
    idle_reader entries(nullptr);
    idle_reader(&entries).parse({}, text.data(), text.size());
}

/// Wall time, and processor time of all threads, which is more reliable on a busy machine.
struct cost {
    double seconds = 0;
    double processor_seconds = 0;

    template <typename Work>
    static cost of(Work&& work) {
        cost spent;
        spent.seconds = bench::seconds_of(
            [&] { spent.processor_seconds = bench::processor_seconds_of(work, CLOCK_PROCESS_CPUTIME_ID); });
        return spent;
    }
};

/// From the content of the file until everything is on disk and shown.
void import_of_a_million_records(benchmark::State& state) {
    static auto file = make_file();
    bench::ratio ratio(state, 1.5), processor_ratio(state, 1.5), import_of_parse(state, 0), save_of_rows(state, 0);
    for (auto _ : state) {
        const auto profile = bench::new_folder();
        bench::bench_player player(profile);
        const auto parse = cost::of([&] { parse_idly(file.text); });
        const auto rows = cost::of([&] { bench::write_sorted_rows(profile / "bare.sqlite", file.records); });
        const auto import = cost::of([&] { quorvel::import_file(file.text, quorvel::all_fields); });
        const auto save = cost::of([&] { player.index.save_now(quorvel::statistics_index_guid); });
        processor_ratio.add(parse.processor_seconds + rows.processor_seconds,
                            import.processor_seconds + save.processor_seconds);
        import_of_parse.add(parse.processor_seconds, import.processor_seconds);
        save_of_rows.add(rows.processor_seconds, save.processor_seconds);
        ratio.add(parse.seconds + rows.seconds, import.seconds + save.seconds);
        if (player.refreshes != 1 || player.refreshed_keys != million) state.SkipWithError("not every record was imported");
        const auto& [key, record] = file.records[million / 2];
        if (quorvel::encode_record(quorvel::read_record(key)) != record) state.SkipWithError("a record differs");
    }
    ratio.report("reading idly + sorted rows with SQLite alone");
    state.counters["processor_ratio"] = processor_ratio.value();
    state.counters["import_of_parse"] = import_of_parse.value();
    state.counters["save_of_rows"] = save_of_rows.value();
    state.counters["megabytes"] = static_cast<double>(file.text.size()) * 1e-6;
}

BENCHMARK(import_of_a_million_records)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
