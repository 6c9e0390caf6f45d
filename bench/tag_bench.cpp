#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <fileref.h>
#include <mp4file.h>
#include <stdlib.h>
#include <tpropertymap.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/bench_player.h"
#include "bench/ratio.h"
#include "player/library/track.h"
#include "player/services/tag_update_service.h"
#include "player/tags/reader.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/tag_sync.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t file_count = 2000;

/// Copies of a few small files in five formats, the same in every such folder.
std::vector<std::string> music_in(const fs::path& folder) {
    static const fs::path samples = bench::new_folder();
    if (std::system(("bash '" MAKE_MUSIC "' '" + samples.string() + "'").c_str()) != 0)
        throw std::runtime_error("cannot make music; is ffmpeg installed?");
    std::vector<fs::path> originals;
    for (const auto& entry : fs::recursive_directory_iterator(samples))
        if (entry.is_regular_file()) originals.push_back(entry.path());
    std::vector<std::string> files;
    for (std::size_t i = 0; i < file_count; ++i) {
        const auto album = folder / std::to_string(i / 12);
        fs::create_directories(album);
        const auto& original = originals[i % originals.size()];
        files.push_back(album / (std::to_string(i) + original.extension().string()));
        fs::copy_file(original, files.back());
    }
    return files;
}

/// The statistics fields of a played and rated track.
std::vector<std::pair<const char*, std::string>> fields_of(std::uint64_t plays) {
    const std::string time = std::to_string(133'000'000'000'000'000 + plays);
    return {{"LAST_PLAYED_TIMESTAMP", time},
            {"FIRST_PLAYED_TIMESTAMP", time},
            {"ADDED_TIMESTAMP", time},
            {"PLAY_COUNT", std::to_string(plays)},
            {"RATING", "4"}};
}

void write_fields(TagLib::File& file, std::uint64_t plays) {
    if (auto* const mp4 = dynamic_cast<TagLib::MP4::File*>(&file)) {
        for (const auto& [name, value] : fields_of(plays))
            mp4->tag()->setItem(std::string("----:com.apple.iTunes:") + name, TagLib::StringList(TagLib::String(value)));
    } else {
        auto properties = file.properties();
        for (const auto& [name, value] : fields_of(plays))
            properties.replace(name, TagLib::StringList(TagLib::String(value)));
        file.setProperties(properties);
    }
    if (!file.save()) std::abort();
}

/// The minimum that survives a kill with the old file or the new one: copy, edit, sync, rename.
void rewrite_with_taglib(const std::string& path, std::uint64_t plays) {
    const fs::path copy = fs::path(path).replace_extension("copy" + fs::path(path).extension().string());
    fs::copy_file(path, copy);
    {
        const TagLib::FileRef file(copy.c_str(), false);
        if (file.isNull()) std::abort();
        write_fields(*file.file(), plays);
    }
    const int handle = open(copy.c_str(), O_RDONLY | O_CLOEXEC);
    if (fsync(handle) != 0) std::abort();
    close(handle);
    fs::rename(copy, path);
}

class nobody final : public ostrevan::view::front_end {
    void print_line(const std::string& line) override { throw std::runtime_error(line); }
    void show_message(const std::string&, const std::string&, ostrevan::popup_message::icon_t) override {}
    void ask(ostrevan::popup_message_v3::query_t) override {}
    void show_dialog(std::shared_ptr<ostrevan::view::open_dialog>) override {}
    void ask_file(ostrevan::file_dialog_service::query_t) override {}
    void show_listing(const ostrevan::view::track_listing&) override {}
    void show_progress(const std::string&, std::size_t, std::size_t) override {}
    void end_progress() override {}
    void beep() override {}
    void note_failure() override {}
};

ostrevan::metadb_handle_list tracks_of(const std::vector<std::string>& files) {
    ostrevan::metadb_handle_list tracks;
    for (std::size_t i = 0; i < files.size(); ++i) {
        auto info = ostrevan::tags::read_file(files[i]);
        info.meta_set("title", std::to_string(i));  // a record for each copy
        auto track = ostrevan::service_new<ostrevan::library::track>(ostrevan::playable_location{files[i], 0});
        track->publish(ostrevan::library::make_snapshot(info.build()));
        tracks.items().emplace_back(std::move(track));
    }
    return tracks;
}

void set_records(const ostrevan::metadb_handle_list& tracks, std::uint64_t plays) {
    const std::uint64_t time = 133'000'000'000'000'000 + plays;
    std::vector<quorvel::PCDB::TrackRecord> records;
    for (const auto& track : tracks)
        records.emplace_back(track, quorvel::t_playback_stats{plays, time, time, time, quorvel::rating_of_stars(4)});
    quorvel::PCDB::MergeBatch(records, quorvel::MergeType::Overwrite);
}

/// Writing the statistics into files, from the command until the last file has been replaced.
void stamping_tags_into_files(benchmark::State& state) {
    const auto floor_files = music_in(bench::new_folder());
    const auto tracks = tracks_of(music_in(bench::new_folder()));
    bench::bench_player player(bench::new_folder());
    nobody screen;
    std::size_t rewritten = 0;
    ostrevan::service_uncounted_t<ostrevan::services::tag_update_service_impl> updates(
        player.loop, screen, [&](const auto& files) { rewritten = files.size(); });
    player.services.add<ostrevan::tag_update_service>(updates);

    bench::ratio ratio(state, 2);
    std::uint64_t plays = 0;
    for (auto _ : state) {
        set_records(tracks, ++plays);
        player.records.flush();
        const double floor_time = bench::seconds_of([&] {
            for (const auto& path : floor_files) rewrite_with_taglib(path, plays);
        });
        ratio.add(floor_time, bench::seconds_of([&] {
                      quorvel::PCDB_stamp_tags(tracks, 0, nullptr);
                      player.loop.run_until_idle();
                  }));
        if (rewritten != file_count) state.SkipWithError("not every file was rewritten");
    }
    ratio.report("copy, TagLib, fsync, rename");
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(file_count));
}

BENCHMARK(stamping_tags_into_files)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
