#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "bench/tracks.h"
#include "ostrevan/library.h"
#include "quorvel/interchange/exporter.h"
#include "quorvel/store/record_fields.h"

namespace {

class switched_library : public ostrevan::library_manager {
public:
    bool is_on = false;
    bool is_library_enabled() const override { return true; }
    void get_all_items(ostrevan::metadb_handle_list& out) const override {
        if (is_on) out.items() = bench::records_of_a_million().tracks;
    }
};

std::string contents_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Writes ready bytes through the player's file layer, in pieces of the size of an export.
void write_ready_bytes(const std::string& path, std::string_view bytes) {
    constexpr std::size_t piece = 16'384 + 150;
    const auto file = ostrevan::filesystem::g_open(path.c_str(), ostrevan::filesystem::open_mode::write_new);
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        file->write(bytes.data() + at, std::min(piece, bytes.size() - at));
    file->flush();
}

void full_backup(const std::string& path) { quorvel::pcdb_export::exportToFile(path.c_str(), quorvel::all_fields, nullptr); }

/// A line of /proc/self/status, in kB.
double kilobytes_of(std::string_view name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name)) return std::stod(line.substr(name.size() + 1));
    std::abort();
}

/// `processor_ratio` excludes waiting for the disk; so does `library_ratio`, with a library of a tenth as many tracks whose
/// keys must be made.
void full_backup_of_a_million_records(benchmark::State& state) {
    ostrevan::service_uncounted_t<switched_library> library;
    bench::bench_player player(bench::records_of_a_million().profile);
    player.services.add<ostrevan::library_manager>(library);
    const std::string path = bench::folder() / "export.xml";
    full_backup(path);
    const auto ready = contents_of(path);
    if (static_cast<std::size_t>(std::ranges::count(ready, '\n')) != bench::million + 1)
        return state.SkipWithError("records are missing");

    constexpr double goal = 1.8;
    bench::ratio ratio(state, goal), processor_ratio(state, goal, bench::typical::least),
        library_ratio(state, goal, bench::typical::least);
    for (auto _ : state) {
        double floor = 0, alone = 0, with_library = 0;  // processor time
        library.is_on = true;
        with_library = bench::processor_seconds_of([&] { full_backup(path); });
        library.is_on = false;
        const double floor_time =
            bench::seconds_of([&] { floor = bench::processor_seconds_of([&] { write_ready_bytes(path, ready); }); });
        const double time = bench::seconds_of([&] { alone = bench::processor_seconds_of([&] { full_backup(path); }); });
        library_ratio.add(floor, with_library);
        processor_ratio.add(floor, alone);
        ratio.add(floor_time, time);
    }
    if (contents_of(path) != ready) return state.SkipWithError("two exports of the same records differ");
    ratio.report("the same bytes, ready, through the same file layer");
    state.counters["processor_ratio"] = processor_ratio.value();
    state.counters["library_ratio"] = library_ratio.value();
    state.counters["megabytes"] = static_cast<double>(ready.size()) * 1e-6;
}

/// Growth of peak memory during an export; the floor is a megabyte. Without a library, no tracks are kept by key.
void memory_of_a_full_backup(benchmark::State& state) {
    const bench::bench_player player(bench::records_of_a_million().profile);
    const std::string path = bench::folder() / "export.xml";
    full_backup(path);
    bench::ratio ratio(state, 1);
    for (auto _ : state) {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5";  // resets the peak
        const double before = kilobytes_of("VmRSS:");
        full_backup(path);
        ratio.add(1024, kilobytes_of("VmHWM:") - before + 1);
    }
    ratio.report("one megabyte");
}

BENCHMARK(full_backup_of_a_million_records)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(memory_of_a_full_backup)->UseManualTime()->Iterations(1);

}  // namespace
