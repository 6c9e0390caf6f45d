#include "player/library/media_library.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

#include "player/library/audio_claims.h"
#include "player/library/directory.h"
#include "player/library/locations.h"
#include "player/library/moved_files.h"
#include "player/library/read_files.h"
#include "player/library/scanner.h"

namespace ostrevan::library {
namespace {

bool is_still(const std::string& path, const file_stamp& stamp) {
    try {
        return status_of(path).stamp == stamp;
    } catch (const std::system_error&) {
        return true;  // the next scan finds it gone
    }
}

bool is_same_track(const track_ptr& handle, const stored_track& scanned) noexcept {
    return handle->location().subsong == scanned.subsong;
}

}  // namespace

/// A file from the database, and where its path lasts; empty if it has tracks.
struct media_library::loaded_file {
    library_file file;
    std::string_view path;
};

/// The changes collected during an update.
struct media_library::outcome {
    library_changes changes;
    std::size_t tracks_unchanged = 0;
    std::vector<placed_sound> displaced;  // sounds replaced by another one at their path
    std::vector<track_edit> assumed;      // same sound by length only
    std::size_t tracks_moved = 0;
    std::vector<unclear_move> unclear;
};

media_library::media_library(const std::string& database_path, track_table& tracks, info_reader reader,
                             library_observer& observer)
    : store_(database_path),
      tracks_(tracks),
      reader_(std::move(reader)),
      observer_(observer),
      playlists_(store_.database()),
      queue_(store_.database()) {
    load();
}

/// A second thread reads the database while this one fills the tables.
void media_library::load() {
    folders_ = store_.folders();
    for (auto& path : store_.ignored()) ignored_.insert(std::move(path));
    const auto count = static_cast<std::size_t>(store_.database().query_integer("SELECT count(*) FROM files"));
    files_.reserve(count);
    tracks_.reserve(count);
    constexpr std::size_t portion = 1000;
    std::mutex mutex;
    std::vector<loaded_file> read;  // guarded
    worker_group reader(1, nullptr);
    const auto read_all = [&] {
        std::vector<loaded_file> fresh;
        const auto deliver = [&] {
            const std::lock_guard guard(mutex);
            std::ranges::move(fresh, std::back_inserter(read));
            fresh.clear();
            reader.wake();
        };
        store_.load([&](library_file&& file, std::string_view path) {
            fresh.push_back({std::move(file), {}});
            // A sheet whose audio belongs to another one has no tracks, but a handle all the same.
            if (fresh.back().file.tracks.empty()) fresh.back().path = tracks_.obtain(path)->location().path;
            if (fresh.size() == portion) deliver();
        });
        deliver();
    };
    reader.run(1, read_all, [&] {
        std::vector<loaded_file> arrived;
        {
            const std::lock_guard guard(mutex);
            arrived.swap(read);
        }
        for (auto& each : arrived) enter(std::move(each));
    });
    scan_number_ = last_arrival_;
    for (const auto& folder : folders_) scan_number_ = std::max(scan_number_.load(), folder.scanned);
}

void media_library::enter(loaded_file&& loaded) {
    auto& [file, path] = loaded;
    last_arrival_ = std::max(last_arrival_, file.arrived);
    for (auto& track : file.tracks) track = tracks_.adopt(std::move(track));
    if (!file.tracks.empty()) path = file.tracks.front()->location().path;
    files_.emplace(path, std::move(file));
}

void media_library::append_items(std::vector<metadb_handle_ptr>& out) const {
    out.reserve(out.size() + files_.size());
    for (const auto& [path, file] : files_) out.insert(out.end(), file.tracks.begin(), file.tracks.end());
}

void media_library::leave_behind() {
    static auto& left = *new std::vector<std::pair<library_files, std::vector<track_ptr>>>;
    left.emplace_back(std::exchange(files_, {}), std::exchange(items_, {}));
}

std::span<const track_ptr> media_library::items_of_file(const std::string& path) const {
    const auto known = files_.find(path);
    return known == files_.end() ? std::span<const track_ptr>() : known->second.tracks;
}

const std::vector<track_ptr>& media_library::items() const {
    if (!items_valid_) {
        items_.clear();
        for (const auto& [path, file] : files_) items_.insert(items_.end(), file.tracks.begin(), file.tracks.end());
        std::ranges::sort(items_, {}, [](const track_ptr& each) -> const playable_location& { return each->location(); });
        items_valid_ = true;
    }
    return items_;
}

scan_summary media_library::add_folders(std::span<const std::string> paths, const scan_options& options) {
    std::vector<file_problem> refused;
    std::vector<library_folder> present, added;
    options.on_main([&] { present = folders_; });
    const auto fresh = check_new_folders(paths, present, refused);
    added.reserve(fresh.size());
    {
        sqlite::transaction adding(store_.database());
        for (const auto& path : fresh) added.push_back(store_.add_folder(path));
        adding.commit();
    }
    options.on_main([&] { folders_.insert(folders_.end(), added.begin(), added.end()); });
    auto summary = scan(added, options);
    summary.refused = std::move(refused);
    return summary;
}

path_changes media_library::remove_folders(std::span<const std::string> paths) {
    path_changes result;
    const auto leaving = check_known_folders(paths, folders_, result.refused);
    const auto is_leaving = [&](std::int64_t id) {
        return std::ranges::find(leaving, id, &library_folder::id) != leaving.end();
    };
    std::vector<std::string> gone;
    for (const auto& [path, file] : files_)
        if (is_leaving(file.folder)) gone.emplace_back(path);
    outcome done;
    drop(gone, done, [&] {
        for (const auto& folder : leaving) store_.remove_folder(folder.id);
    });
    std::erase_if(folders_, [&](const library_folder& each) { return is_leaving(each.id); });
    result.tracks_removed = done.changes.removed.size();
    notify(done);
    return result;
}

scan_summary media_library::rescan(const scan_options& options) {
    std::vector<library_folder> present;
    options.on_main([&] { present = folders_; });
    return scan(present, options);
}

scan_summary media_library::rescan(std::span<const std::string> paths, const scan_options& options) {
    std::vector<file_problem> refused;
    std::vector<library_folder> present;
    options.on_main([&] { present = folders_; });
    auto summary = scan(folders_around(paths, present, refused), options);
    summary.refused = std::move(refused);
    return summary;
}

path_changes media_library::ignore(std::span<const std::string> paths) {
    path_changes result;
    const auto fresh = check_ignored(paths, folders_, result.refused);
    const auto is_leaving = [&](std::string_view path) {
        return std::ranges::any_of(fresh, [&](const std::string& place) { return is_below(path, place); });
    };
    std::vector<std::string> gone;
    for (const auto& [path, file] : files_)
        if (is_leaving(path)) gone.emplace_back(path);
    outcome done;
    drop(gone, done, [&] {
        for (const auto& path : fresh) store_.add_ignored(path);
    });
    ignored_.insert(fresh.begin(), fresh.end());
    result.tracks_removed = done.changes.removed.size();
    notify(done);
    return result;
}

path_changes media_library::stop_ignoring(std::span<const std::string> paths) {
    path_changes result;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        if (!ignored_.contains(path)) {
            result.refused.push_back({path, "is not ignored. 'ostrevan library ignore' shows what is."});
            continue;
        }
        store_.remove_ignored(path);
        ignored_.erase(path);
    }
    return result;
}

scan_summary media_library::scan(std::span<const library_folder> folders, const scan_options& options) {
    scan_summary summary;
    outcome done;
    ignored_paths ignored;
    options.on_main([&] { ignored = ignored_; });
    const auto number = ++scan_number_;
    try {
        auto report =
            scan_folders({number, folders, ignored, files_mutex_}, files_, reader_, options,
                         [&](std::vector<scanned_file>&& files) { save(std::move(files), number, done, options.on_main); });
        if (report.is_stopped) done.displaced.clear();  // a stopped scan does not know where they went
        options.on_main([&] { drop(report.gone, done, [&] { note_scan(report); }); });
        summary.tracks_unchanged = done.tracks_unchanged + report.tracks_unchanged;
        summary.absent = std::move(report.absent);
        summary.problems = std::move(report.problems);
        summary.is_stopped = report.is_stopped;
    } catch (...) {
        options.on_main([&] { notify(done); });
        throw;
    }
    summary.tracks_added = done.changes.added.size();
    summary.tracks_updated = done.changes.modified.size();
    summary.tracks_removed = done.changes.removed.size();
    summary.tracks_moved = done.tracks_moved;
    summary.unclear = std::move(done.unclear);
    options.on_main([&] { notify(done); });
    return summary;
}

void media_library::save(std::vector<scanned_file>&& files, std::uint64_t scan, outcome& done,
                         const main_thread_runner& on_main) {
    const auto is_other_sound = store(files, scan);
    on_main([&] {
        const std::unique_lock lock(files_mutex_);
        for (std::size_t i = 0; i < files.size(); ++i) apply(std::move(files[i]), is_other_sound[i], done);
    });
}

/// Returns whether the sounds are other ones than before. Files that have changed since they were read are left out: they
/// are read again by the next scan, or are being read by whoever has changed them.
std::vector<bool> media_library::store(std::vector<scanned_file>& files, std::uint64_t scan) {
    std::vector<bool> is_other_sound;
    sqlite::transaction saving(store_.database());
    std::erase_if(files, [](const scanned_file& each) { return !is_still(each.path, each.file.stamp); });
    {
        const std::shared_lock lock(files_mutex_);
        for (auto& [path, file, tracks] : files) {
            const auto known = files_.find(path);
            if (known != files_.end()) file.id = known->second.id;
            const auto before = known != files_.end() ? known->second.sound.value_or(0) : 0;
            is_other_sound.push_back(before != 0 && file.sound.value_or(0) != 0 && before != file.sound);
            file.arrived = known != files_.end() && !is_other_sound.back() ? known->second.arrived : scan;
            last_arrival_ = std::max(last_arrival_, file.arrived);
        }
    }
    for (auto& [path, file, tracks] : files) file.id = store_.put_file(path, file, tracks);
    saving.commit();
    return is_other_sound;
}

void media_library::apply(scanned_file&& scanned, bool is_other_sound, outcome& done) {
    items_valid_ = false;
    auto found = files_.find(scanned.path);
    const bool is_new = found == files_.end();
    if (is_new)
        found = files_
                    .try_emplace(tracks_.obtain(scanned.path, scanned.tracks.empty() ? 0 : scanned.tracks.front().subsong)
                                     ->location()
                                     .path)
                    .first;
    const auto place = found;
    const auto path = place->first;
    auto& known = place->second;
    if (is_other_sound) done.displaced.push_back(sound_at(path, known, scan_of(folders_, known.folder)));
    std::vector<track_ptr> tracks;
    tracks.reserve(scanned.tracks.size());
    for (auto& fresh : scanned.tracks) {
        const auto old =
            std::ranges::find_if(known.tracks, [&](const track_ptr& each) { return is_same_track(each, fresh); });
        if (old != known.tracks.end()) {
            tracks.push_back(*old);
            update(*old, std::move(fresh.info), is_other_sound, done);
        } else {
            tracks.push_back(tracks_.obtain(path, fresh.subsong));
            tracks.back()->publish(make_snapshot(std::move(fresh.info)));
            done.changes.added.push_back(tracks.back());
        }
    }
    for (const auto& old : known.tracks)
        if (std::ranges::find(tracks, old) == tracks.end()) done.changes.removed.push_back(old);
    // The walk has noted this for the files it knew.
    if (is_new) known.seen = scan_number_;
    if (is_new) known.seen_on = scanned.file.device;
    static_cast<stored_file&>(known) = std::move(scanned.file);
    known.tracks = std::move(tracks);
}

void media_library::update(const track_ptr& track, file_info&& info, bool is_other_sound, outcome& done) {
    const auto before = track->info();
    if (before && before->info() == info) {
        ++done.tracks_unchanged;
        return;
    }
    const auto after = make_snapshot(std::move(info));
    track->publish(after);
    done.changes.modified.push_back(track);
    if (before && is_same_sound(before->info(), after->info()))
        (is_other_sound ? done.assumed : done.changes.edited).push_back({track, before, after});
}

void media_library::drop(std::span<const std::string> gone, outcome& done, const std::function<void()>& more) {
    auto moved = find_moved_files(files_, folders_, gone, std::move(done.displaced));
    sqlite::transaction dropping(store_.database());
    for (const auto& path : gone) store_.remove_file(files_.at(path).id);
    for (const auto& path : moved.paths) store_.forget_edits(path);
    for (const auto& [track, before, after, from] : moved.edits)
        store_.put_edit({track->location().path, {from->subsong, before->info()}, from->path});
    library_store::moved_locations places;
    for (const auto& [track, before, after, from] : moved.edits) places.emplace(*from, track->location());
    if (!places.empty()) store_.move_entries(places);
    more();
    dropping.commit();

    const std::unique_lock lock(files_mutex_);
    for (const auto& path : gone) {
        const auto found = files_.find(path);
        done.changes.removed.insert(done.changes.removed.end(), found->second.tracks.begin(), found->second.tracks.end());
        files_.erase(found);
    }
    // An edit assumed from the length alone is none if either sound was found elsewhere.
    std::erase_if(done.assumed, [&](const track_edit& each) { return moved.paths.contains(each.track->location().path); });
    done.tracks_moved = moved.edits.size();
    std::ranges::move(moved.edits, std::back_inserter(done.changes.edited));
    done.unclear = std::move(moved.unclear);
}

void media_library::note_scan(const scan_report& report) {
    for (const auto& path : report.on_other_device) {
        const auto found = files_.find(path);
        if (found == files_.end() || found->second.device == found->second.seen_on) continue;
        store_.set_device(found->second.id, found->second.seen_on);
        found->second.device = found->second.seen_on;
    }
    if (report.is_stopped) return;
    for (auto& folder : folders_) {
        const bool is_seen = std::ranges::find(report.folders_seen, folder.id) != report.folders_seen.end();
        if (!is_seen || folder.scanned >= last_arrival_) continue;
        folder.scanned = scan_number_.load();
        store_.set_scanned(folder);
    }
}

void media_library::notify(outcome& done) {
    items_valid_ = false;
    std::ranges::move(done.assumed, std::back_inserter(done.changes.edited));
    if (!done.changes.empty()) observer_.on_library_changed(done.changes);
}

std::vector<file_problem> media_library::refresh_tracks(std::span<const track_ptr> tracks, refresh_mode mode,
                                                        const main_thread_runner& on_main) {
    std::vector<file_problem> problems;
    outcome done;
    auto& changes = done.changes;
    std::vector<scanned_file> of_library;
    std::set<std::string_view> seen;
    for (const auto& track : tracks) {
        const auto& path = track->location().path;
        if (mode == refresh_mode::unknown_only && track->has_info()) continue;
        if (!seen.insert(path).second) continue;
        try {
            const auto stamp = status_of(path).stamp;
            const auto known = library_file_at(path);
            if (!known) {
                for (const auto& [subsong, info] : read_tracks(path, reader_)) {
                    changes.modified.push_back(tracks_.obtain(path, subsong));
                    changes.modified.back()->publish(info);
                }
            } else if (mode != refresh_mode::if_changed || !is_unchanged(*known, stamp)) {
                of_library.push_back(scan_file({{path, stamp, known->device}, known->folder}, reader_));
            }
        } catch (const std::exception& failure) {
            problems.push_back({path, reason_of(failure, path)});
        }
    }
    if (!of_library.empty()) save(std::move(of_library), scan_number_ + 1, done, on_main);
    changes.edited.clear();
    done.assumed.clear();
    on_main([&] { notify(done); });
    return problems;
}

std::optional<library_file> media_library::library_file_at(const std::string& path) {
    const std::shared_lock lock(files_mutex_);
    const auto known = files_.find(path);
    return known == files_.end() ? std::nullopt : std::optional(known->second);
}

std::vector<track_edit> media_library::unfinished_edits() const {
    std::vector<track_edit> edits;
    for (const auto& [path, before, path_before] : store_.edits()) {
        const auto known = files_.find(path);
        if (known == files_.end()) continue;
        const auto& tracks = known->second.tracks;
        // clang 14 lets a lambda capture a structured binding only under another name.
        const auto track = std::ranges::find_if(
            tracks, [&scanned = before](const track_ptr& each) { return is_same_track(each, scanned); });
        if (track == tracks.end()) continue;
        auto old = make_snapshot(before.info);
        auto now = (*track)->info();
        const bool is_edit =
            now && (path_before || !(old->info() == now->info())) && is_same_sound(old->info(), now->info());
        if (!is_edit) continue;
        edits.push_back({*track, std::move(old), std::move(now)});
        if (path_before) edits.back().location_before = {*path_before, before.subsong};
    }
    return edits;
}

}  // namespace ostrevan::library
