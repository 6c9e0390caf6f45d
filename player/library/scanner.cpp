#include "player/library/scanner.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>
#include <shared_mutex>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "player/library/audio_claims.h"
#include "player/library/disk_check.h"
#include "player/library/folder_walk.h"
#include "player/library/name_filter.h"
#include "player/library/read_files.h"
#include "player/library/worker_group.h"
#include "player/system/durable_file.h"

namespace ostrevan::library {
namespace {

class scan {
public:
    scan(const scan_request& request, library_files& files, const info_reader& reader, const scan_options& options,
         const scan_sink& sink)
        : request_(request),
          files_(files),
          reader_(reader),
          options_(options),
          sink_(sink),
          workers_(options.workers, options.stop) {}

    scan_report run() {
        for (const auto& folder : request_.folders)
            if (!workers_.is_stopped()) walk(folder);
        // Only a complete walk can tell what is gone.
        if (!workers_.is_stopped()) {
            note_devices();
            read_sheets();
            read_audio();
        }
        report_.is_stopped = workers_.is_stopped();
        // Nor can a moved file be told from a deleted one before everything was read.
        if (!report_.is_stopped) find_gone();
        report_.tracks_unchanged = tracks_unchanged_;
        std::ranges::sort(report_.problems, {}, &file_problem::path);
        tell({});
        return std::move(report_);
    }

private:
    void walk(const library_folder& folder) {
        const walk_rules rules{[this](std::string_view name) { return names_.is_wanted(name); },
                               [this](const std::string& path) { return request_.ignored.contains(path); },
                               [this](const found_file& file) { return is_of_interest(file); },
                               [this](const std::string& directory) { tell(directory); }};
        tell(folder.path);
        auto found = walk_folder(folder.path, rules, workers_);
        for (auto& file : found.files) (is_cue_path(file.path) ? sheets_ : audio_).push_back({std::move(file), folder.id});
        if (found.root_reason.empty() && found.is_empty && holds_files(folder.id)) found.root_reason = "it is empty";
        if (found.root_reason.empty()) report_.folders_seen.push_back(folder.id);
        else report_.absent.push_back({folder.path, std::move(found.root_reason), 0, absence::library_folder});
        for (auto& [path, reason, leads_nowhere] : found.hidden) {
            if (leads_nowhere) dead_links_.insert(path);
            report_.absent.push_back({std::move(path), std::move(reason), 0, absence::hidden});
        }
    }

    [[nodiscard]] std::shared_lock<std::shared_mutex> lock_files() const { return std::shared_lock(request_.files_mutex); }

    [[nodiscard]] bool holds_files(std::int64_t folder) const {
        const auto lock = lock_files();
        return std::ranges::any_of(files_, [&](const auto& each) { return each.second.folder == folder; });
    }

    /// Called by the threads of the walk. Each path, and so its record, is visited by one of them only.
    bool is_of_interest(const found_file& there) {
        known_.fetch_add(1, std::memory_order_relaxed);
        const auto lock = lock_files();
        const auto found = files_.find(there.path);
        if (found == files_.end()) return true;
        auto& file = found->second;
        file.seen = request_.number;
        file.seen_on = there.device;
        if (file.device != there.device) devices_changed_.store(true, std::memory_order_relaxed);
        seen_.fetch_add(1, std::memory_order_relaxed);
        if (!(file.stamp == there.stamp) || !file.sound || is_cue_path(there.path)) return true;
        note_unchanged(file);
        return false;
    }

    void note_devices() {
        const auto lock = lock_files();
        unseen_ = files_.size() - seen_;
        if (!devices_changed_ && unseen_ == 0) return;
        for (const auto& [path, file] : files_) {
            if (file.seen != request_.number) continue;
            disks_.note(file.device, file.seen_on);
            if (file.device != file.seen_on) report_.on_other_device.emplace_back(path);
        }
    }

    void note_unchanged(const library_file& file) {
        done_.fetch_add(1, std::memory_order_relaxed);
        tracks_unchanged_.fetch_add(file.tracks.size(), std::memory_order_relaxed);
    }

    void read_sheets() {
        if (sheets_.empty() && unseen_ == 0) return;
        std::erase_if(sheets_, [&](const read_job& sheet) {
            const auto lock = lock_files();
            const auto known = files_.find(sheet.found.path);
            const bool is_same = known != files_.end() && is_unchanged(known->second, sheet.found.stamp);
            if (is_same) note_unchanged(known->second);
            return is_same;
        });

        std::vector<scanned_file> read;
        read_files(sheets_, reader_, workers_, done_, events([&](std::vector<scanned_file>&& files) {
                       read.insert(read.end(), std::move_iterator(files.begin()), std::move_iterator(files.end()));
                   }));
        // Sheets that are unchanged, failed or were not reached keep their tracks and audio, unless they are gone.
        std::unordered_set<std::string_view> replaced;
        for (const auto& sheet : read) replaced.insert(sheet.path);
        {
            const auto lock = lock_files();
            for (const auto& [path, file] : files_)
                if (!file.sources.empty() && !replaced.contains(path) && !is_gone(path, file)) claims_.add(file.sources);
        }
        claims_.settle(read);
        if (!read.empty()) sink_(std::move(read));
    }

    void read_audio() {
        {
            const auto lock = lock_files();
            done_ += std::erase_if(
                audio_, [this](const read_job& each) { return claims_.contains(each.found.path) && drop(each.found.path); });
            // Audio listed by itself so far, and unchanged.
            for (const auto& path : claims_.paths())
                if (const auto known = files_.find(path); known != files_.end() && known->second.seen == request_.number) {
                    tracks_unchanged_ -= known->second.tracks.size();
                    drop(path);
                }
        }
        read_files(audio_, reader_, workers_, done_, events(sink_));
    }

    /// Marks a found file as gone.
    bool drop(const std::string& path) {
        if (const auto known = files_.find(path); known != files_.end()) {
            known->second.seen = 0;
            ++unseen_;
        }
        return true;
    }

    [[nodiscard]] bool is_gone(std::string_view path, const library_file& file) const {
        return file.seen != request_.number && is_in_seen_folder(file) && absent_place_of(path) == report_.absent.size() &&
               !place_without_disk(path, file);
    }

    [[nodiscard]] bool is_in_seen_folder(const library_file& file) const {
        return std::ranges::find(report_.folders_seen, file.folder) != report_.folders_seen.end();
    }

    /// Audio claimed by a sheet and ignored files are gone, whatever their disk.
    [[nodiscard]] std::optional<std::string> place_without_disk(std::string_view path, const library_file& file) const {
        if (claims_.contains(std::string(path))) return std::nullopt;
        return disks_.place_without_disk(std::string(path), file.device);
    }

    [[nodiscard]] std::size_t absent_place_of(std::string_view path) const {
        const auto place =
            std::ranges::find_if(report_.absent, [&](const absent_place& each) { return is_below(path, each.path); });
        return static_cast<std::size_t>(place - report_.absent.begin());
    }

    /// Tracks below an absent place or on an absent disk are kept and counted there.
    void find_gone() {
        if (unseen_ == 0 && report_.absent.empty()) return;
        const auto lock = lock_files();
        std::map<std::string, std::size_t> on_other_disk;
        for (const auto& [path, file] : files_) {
            if (file.seen == request_.number) continue;
            if (const auto place = absent_place_of(path); place != report_.absent.size())
                report_.absent[place].tracks_kept += file.tracks.size();
            else if (is_gone(path, file)) report_.gone.emplace_back(path);
            else if (is_in_seen_folder(file)) on_other_disk[*place_without_disk(path, file)] += file.tracks.size();
        }
        for (const auto& [path, kept] : on_other_disk) report_.absent.push_back({path, {}, kept, absence::other_disk});
        // A broken link matters only if it used to lead somewhere.
        std::erase_if(report_.absent,
                      [&](const absent_place& each) { return each.tracks_kept == 0 && dead_links_.contains(each.path); });
    }

    read_events events(scan_sink on_read) {
        return {std::move(on_read), [this](file_problem&& problem) { report_.problems.push_back(std::move(problem)); },
                [this](const std::string& path) { tell(system::folder_of(path)); }};
    }

    void tell(const std::string& folder) const {
        if (options_.on_progress) options_.on_progress({done_, known_, folder});
    }

    const scan_request& request_;
    library_files& files_;
    const info_reader& reader_;
    const scan_options& options_;
    const scan_sink& sink_;
    worker_group workers_;
    const name_filter names_;

    std::atomic<std::size_t> done_ = 0;
    std::atomic<std::size_t> known_ = 0;
    std::atomic<std::size_t> seen_ = 0;  // of the known files
    std::size_t unseen_ = 0;
    std::atomic<std::size_t> tracks_unchanged_ = 0;
    std::vector<read_job> sheets_;
    std::vector<read_job> audio_;
    audio_claims claims_;
    disk_check disks_;
    std::atomic<bool> devices_changed_ = false;
    std::unordered_set<std::string> dead_links_;
    scan_report report_;
};

}  // namespace

scan_report scan_folders(const scan_request& request, library_files& files, const info_reader& reader,
                         const scan_options& options, const scan_sink& sink) {
    return scan(request, files, reader, options, sink).run();
}

}  // namespace ostrevan::library
