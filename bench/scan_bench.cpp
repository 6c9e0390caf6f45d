#include <benchmark/benchmark.h>
#include <fileref.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <tpropertymap.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/ratio.h"
#include "player/library/media_library.h"
#include "player/tags/reader.h"

namespace {

namespace fs = std::filesystem;
using namespace ostrevan::library;

constexpr std::size_t workers = 4;
constexpr int albums = 800;
constexpr const char* encoders[][2] = {
    {"flac", "flac"}, {"libmp3lame", "mp3"}, {"libvorbis", "ogg"}, {"libopus", "opus"}, {"aac", "m4a"}};

class nobody : public library_observer {
    void on_library_changed(const library_changes& /*changes*/) override {}
    void on_failure(const std::string& message) override { throw std::runtime_error(message); }
};

/// Ten thousand files of two seconds in five formats, about twelve per folder, in the working directory.
class music {
public:
    music() {
        std::string pattern = fs::current_path() / "scan_bench_XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
        folder_ = pattern;
        for (const auto& [encoder, extension] : encoders) make_sample(encoder, extension);
        for (int album = 0; album < albums; ++album)
            make_album(folder_ / "music" / std::to_string(album / 20) / std::to_string(album));
    }
    ~music() { fs::remove_all(folder_); }
    music(const music&) = delete;
    music& operator=(const music&) = delete;

    [[nodiscard]] const fs::path& folder() const noexcept { return folder_; }
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return files_; }

private:
    void make_sample(const std::string& encoder, const std::string& extension) const {
        const std::string command =
            "ffmpeg -nostdin -v error -f lavfi -i 'sine=duration=2:sample_rate=48000' -c:a " + encoder +
            " -metadata title='A title of usual length' -metadata artist='Some Artist' -metadata album='The Album'"
            " -metadata album_artist='Some Artist' -metadata date=1999 -metadata track=7 -metadata genre=Pop '" +
            (folder_ / ("sample." + extension)).string() + "'";
        if (std::system(command.c_str()) != 0) throw std::runtime_error("ffmpeg is needed to make the music: " + command);
    }
    void make_album(const fs::path& path) {
        fs::create_directories(path);
        for (int number = 1; number <= 12; ++number) {
            const std::string extension = encoders[number % 5][1];
            const auto file = path / (std::to_string(number) + " - A title of usual length." + extension);
            fs::copy_file(folder_ / ("sample." + extension), file);
            files_.push_back(file.string());
        }
    }

    fs::path folder_;
    std::vector<std::string> files_;
};

const music& the_music() {
    static const music made;
    return made;
}

/// Calls `work` for each file, on as many threads as a scan uses.
void with_each_file(const std::function<void(const std::string&)>& work) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < workers; ++i)
        threads.emplace_back([&] {
            const auto& files = the_music().files();
            for (std::size_t index = next++; index < files.size(); index = next++) work(files[index]);
        });
}

/// Reads every field with TagLib, without audio properties.
void read_with_taglib(const std::string& path) {
    const TagLib::FileRef file(path.c_str(), false);
    if (file.isNull()) std::abort();
    benchmark::DoNotOptimize(file.file()->properties().size());
}

void look_at(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) std::abort();
    benchmark::DoNotOptimize(status);
}

/// A library in a new database, removed with the object.
class fresh_library {
public:
    fresh_library() : database_(the_music().folder() / "library.sqlite") {
        remove_database();
        library_ = std::make_unique<media_library>(database_.string(), tracks_, ostrevan::tags::read_audio, observer_);
        library_->load();
    }
    ~fresh_library() {
        library_.reset();
        remove_database();
    }
    void scan() {
        const auto summary =
            library_->add_folders(std::vector{(the_music().folder() / "music").string()}, {workers, nullptr, {}});
        if (summary.tracks_added != the_music().files().size()) std::abort();
    }
    void rescan() {
        const auto summary = library_->rescan({workers, nullptr, {}});
        if (summary.tracks_unchanged != the_music().files().size()) std::abort();
    }

private:
    void remove_database() const {
        for (const auto* suffix : {"", "-wal", "-shm"}) fs::remove(database_.string() + suffix);
    }

    fs::path database_;
    nobody observer_;
    track_table tracks_;
    std::unique_ptr<media_library> library_;
};

void scan_of_new_files(benchmark::State& state) {
    with_each_file(read_with_taglib);
    bench::ratio ratio(state, 1.1);
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([] { with_each_file(read_with_taglib); });
        fresh_library library;
        ratio.add(floor_time, bench::seconds_of([&] { library.scan(); }));
    }
    ratio.report("TagLib without audio properties, same workers");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(the_music().files().size()));
}

void rescan_with_nothing_changed(benchmark::State& state) {
    fresh_library library;
    library.scan();
    bench::ratio ratio(state, 2);
    for (auto _ : state) {
        const double floor_time = bench::seconds_of([] { with_each_file(look_at); });
        ratio.add(floor_time, bench::seconds_of([&] { library.rescan(); }));
    }
    ratio.report("stat of every file, same workers");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(the_music().files().size()));
}

BENCHMARK(scan_of_new_files)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(rescan_with_nothing_changed)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

}  // namespace
