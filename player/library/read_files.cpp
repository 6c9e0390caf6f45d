#include "player/library/read_files.h"

#include <chrono>
#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace ostrevan::library {
namespace {

using steady = std::chrono::steady_clock;

constexpr std::size_t files_a_portion = 1000;
constexpr auto longest_portion = std::chrono::seconds(1);

/// Treats an audio file as a sheet without sources.
cue_contents contents_of(const std::string& path, const info_reader& reader) {
    if (is_cue_path(path)) return read_cue(path, reader);
    const auto [info, sound] = reader(path);
    return {{}, split_embedded(info), sound};
}

class reading {
public:
    reading(std::span<const read_job> jobs, const info_reader& reader, worker_group& workers, std::atomic<std::size_t>& done,
            const read_events& events) noexcept
        : jobs_(jobs), reader_(reader), workers_(workers), done_(done), events_(events) {}

    void run() {
        workers_.run(
            jobs_.size(), [this] { work(); }, [this] { deliver(false); });
        deliver(true);
    }

private:
    void work() {
        while (!workers_.is_stopped()) {
            const std::size_t index = next_.fetch_add(1, std::memory_order_relaxed);
            if (index >= jobs_.size()) return;
            read(jobs_[index]);
            done_.fetch_add(1, std::memory_order_relaxed);
        }
    }

    void read(const read_job& job) {
        try {
            auto file = scan_file(job, reader_);
            const std::lock_guard guard(mutex_);
            last_ = &job;
            read_.push_back(std::move(file));
            if (read_.size() % files_a_portion == 0) workers_.wake();
        } catch (const std::exception& failure) {
            const std::lock_guard guard(mutex_);
            last_ = &job;
            problems_.push_back({job.found.path, reason_of(failure, job.found.path)});
        }
    }

    void deliver(bool is_last) {
        std::vector<scanned_file> files;
        std::vector<file_problem> problems;
        const read_job* last = nullptr;
        {
            const std::lock_guard guard(mutex_);
            const bool is_due = is_last || read_.size() >= files_a_portion || steady::now() - delivered_ >= longest_portion;
            if (is_due) files.swap(read_);
            problems.swap(problems_);
            last = last_;
        }
        for (auto& problem : problems) events_.on_problem(std::move(problem));
        if (!files.empty()) {
            events_.on_read(std::move(files));
            delivered_ = steady::now();
        }
        if (last != nullptr) events_.on_progress(last->found.path);
    }

    const std::span<const read_job> jobs_;
    const info_reader& reader_;
    worker_group& workers_;
    std::atomic<std::size_t>& done_;
    const read_events& events_;

    std::atomic<std::size_t> next_ = 0;
    steady::time_point delivered_ = steady::now();
    std::mutex mutex_;  // guards the rest
    std::vector<scanned_file> read_;
    std::vector<file_problem> problems_;
    const read_job* last_ = nullptr;
};

}  // namespace

scanned_file scan_file(const read_job& job, const info_reader& reader) {
    const auto& [path, stamp, device] = job.found;
    auto contents = contents_of(path, reader);
    scanned_file result{.path = path,
                        .file = {.folder = job.folder,
                                 .stamp = stamp,
                                 .device = device,
                                 .sound = contents.sound,
                                 .sources = std::move(contents.sources)}};
    for (auto& [subsong, info] : contents.tracks) result.tracks.push_back({subsong, std::move(info)});
    return result;
}

std::vector<track_snapshot> read_tracks(const std::string& path, const info_reader& reader) {
    std::vector<track_snapshot> result;
    auto contents = contents_of(path, reader);
    for (auto& [subsong, info] : contents.tracks) result.push_back({subsong, make_snapshot(std::move(info))});
    return result;
}

void read_files(std::span<const read_job> jobs, const info_reader& reader, worker_group& workers,
                std::atomic<std::size_t>& done, const read_events& events) {
    reading(jobs, reader, workers, done, events).run();
}

std::string reason_of(const std::exception& failure, const std::string& path) {
    // The allocation of a file that states a wrong size.
    if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr ||
        dynamic_cast<const std::length_error*>(&failure) != nullptr)
        return "reading it takes more memory than there is; the file is probably damaged";
    std::string_view text = failure.what();
    if (text.starts_with(path) && text.substr(path.size()).starts_with(": ")) text.remove_prefix(path.size() + 2);
    return std::string(text);
}

}  // namespace ostrevan::library
