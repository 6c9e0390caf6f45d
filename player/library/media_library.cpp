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
#include "player/library/location_order.h"
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

/// Whether a file has been replaced by another recording.
bool is_other_sound(const stored_file& before, const stored_file& now) noexcept {
    return before.sound.value_or(0) != 0 && now.sound.value_or(0) != 0 && before.sound != now.sound;
}

bool is_same_track(const track_ptr& handle, const stored_track& scanned) noexcept {
    return handle->location().subsong == scanned.subsong;
}

template <typename Handle>
std::vector<Handle> handles_in(const library_files& files) {
    std::vector<Handle> tracks;
    tracks.reserve(files.size());
    for (const auto& [path, file] : files) tracks.insert(tracks.end(), file.tracks.begin(), file.tracks.end());
    return tracks;
}

}  // namespace

/// What a scan has found out about disks and folders.
struct media_library::scan_notes {
    struct disk {
        std::string path;
        std::int64_t file;
        std::uint64_t device;
    };
    std::vector<disk> on_other_device;
    std::vector<library_folder> folders;
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
      infos_(std::make_unique<stored_infos>(store_, [this](const std::string& message) { observer_.on_failure(message); })),
      playlists_(store_.database()),
      queue_(store_.database()) {
    folders_ = store_.folders();
    for (auto& path : store_.ignored()) ignored_.insert(std::move(path));
}

void media_library::load(key_maker* keys) {
    if (is_loaded_) return;
    const auto count = static_cast<std::size_t>(store_.database().query_integer("SELECT count(*) FROM files"));
    files_.reserve(count);
    tracks_.reserve(count);
    load_files(store_, keys, [&](loaded_files&& part) { enter(std::move(part), keys); });
    scan_number_ = last_arrival_;
    for (const auto& folder : folders_) scan_number_ = std::max(scan_number_.load(), folder.scanned);
    ++changes_;
    is_loaded_ = true;
}

void media_library::enter(loaded_files&& loaded, key_maker* keys) {
    constexpr std::size_t ahead = 8;  // cache misses of so many files overlap
    auto next_key = loaded.keys.begin();
    for (std::size_t i = 0; i < loaded.files.size(); ++i) {
        if (i + ahead < loaded.files.size()) {
            files_.prefetch(loaded.files[i + ahead].path_hash);
            tracks_.prefetch(loaded.files[i + ahead].path_hash);
        }
        auto& [file, empty, hash] = loaded.files[i];
        const auto first_key = next_key;
        if (keys != nullptr) next_key += static_cast<std::ptrdiff_t>(file.tracks.size());
        for (auto& track : file.tracks) track = tracks_.adopt(std::move(track), hash);
        const auto handle = empty ? tracks_.adopt(std::move(empty), hash) : file.tracks.front();
        const auto [place, is_new] = files_.try_add(handle->location().path, hash);
        if (!is_new) continue;  // a damaged database may name a file twice
        last_arrival_ = std::max(last_arrival_, file.arrived);
        auto key = first_key;
        for (const auto& track : file.tracks) {
            const auto serial = infos_->add(file.id, *track);
            if (keys != nullptr) keys->remember(serial, *key++);
        }
        place->second = std::move(file);
    }
}

void media_library::leave_behind() {
    static auto& left = *new std::vector<std::tuple<library_files, kept_list<track_ptr>::pointer,
                                                    kept_list<metadb_handle_ptr>::pointer, std::unique_ptr<stored_infos>>>;
    infos_->close();  // the handles refer to it
    left.emplace_back(std::exchange(files_, {}), sorted_.take(), unordered_.take(), std::move(infos_));
}

std::span<const track_ptr> media_library::items_of_file(const std::string& path) const {
    const auto known = files_.find(path);
    return known == files_.end() ? std::span<const track_ptr>() : known->second.tracks;
}

const std::vector<track_ptr>& media_library::items() const { return *sorted_items(); }

kept_list<track_ptr>::pointer media_library::sorted_items() const {
    const std::shared_lock lock(files_mutex_);
    return sorted_.get(changes_, [this] {
        auto items = handles_in<track_ptr>(files_);
        sort_by_location(items);
        return items;
    });
}

kept_list<metadb_handle_ptr>::pointer media_library::unordered_items() const {
    const std::shared_lock lock(files_mutex_);
    return unordered_.get(changes_, [this] { return handles_in<metadb_handle_ptr>(files_); });
}

/// The main thread never waits for readers of the files; the caller does.
void media_library::change(const main_thread_runner& on_main, const std::function<void()>& work) {
    for (bool is_done = false; !is_done;) {
        on_main([&] {
            const std::unique_lock lock(files_mutex_, std::try_to_lock);
            if (!lock) return;
            ++changes_;
            work();
            is_done = true;
        });
        if (!is_done) const std::unique_lock readers_are_done(files_mutex_);
    }
}

void media_library::change_each(std::size_t count, const main_thread_runner& on_main,
                                const std::function<void(std::size_t)>& work) {
    constexpr std::size_t portion = 100;
    for (std::size_t first = 0; first < count; first += portion)
        change(on_main, [&] {
            for (auto i = first; i < std::min(count, first + portion); ++i) work(i);
        });
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
    change(options.on_main, [&] { folders_.insert(folders_.end(), added.begin(), added.end()); });
    auto summary = scan(added, options);
    summary.refused = std::move(refused);
    return summary;
}

path_changes media_library::remove_folders(std::span<const std::string> paths, const main_thread_runner& on_main) {
    path_changes result;
    std::vector<library_folder> present;
    on_main([&] { present = folders_; });
    const auto leaving = check_known_folders(paths, present, result.refused);
    const auto is_leaving = [&](std::int64_t id) {
        return std::ranges::find(leaving, id, &library_folder::id) != leaving.end();
    };
    outcome done;
    drop(paths_where([&](std::string_view, const library_file& file) { return is_leaving(file.folder); }), done, on_main,
         [&] {
             for (const auto& folder : leaving) store_.remove_folder(folder.id);
         });
    change(on_main, [&] { std::erase_if(folders_, [&](const library_folder& each) { return is_leaving(each.id); }); });
    result.tracks_removed = done.changes.removed.size();
    notify(done);
    return result;
}

std::vector<std::string> media_library::paths_where(
    const std::function<bool(std::string_view path, const library_file& file)>& is_wanted) const {
    const std::shared_lock lock(files_mutex_);
    std::vector<std::string> paths;
    for (const auto& [path, file] : files_)
        if (is_wanted(path, file)) paths.emplace_back(path);
    return paths;
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

path_changes media_library::ignore(std::span<const std::string> paths, const main_thread_runner& on_main) {
    path_changes result;
    std::vector<library_folder> present;
    on_main([&] { present = folders_; });
    const auto fresh = check_ignored(paths, present, result.refused);
    const auto is_leaving = [&](std::string_view path, const library_file&) {
        return std::ranges::any_of(fresh, [&](const std::string& place) { return is_below(path, place); });
    };
    outcome done;
    drop(paths_where(is_leaving), done, on_main, [&] {
        for (const auto& path : fresh) store_.add_ignored(path);
    });
    change(on_main, [&] { ignored_.insert(fresh.begin(), fresh.end()); });
    result.tracks_removed = done.changes.removed.size();
    notify(done);
    return result;
}

path_changes media_library::stop_ignoring(std::span<const std::string> paths, const main_thread_runner& on_main) {
    path_changes result;
    ignored_paths present;
    on_main([&] { present = ignored_; });
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        if (present.erase(path) == 0) {
            result.refused.push_back({path, "is not ignored. 'ostrevan library ignore' shows what is."});
            continue;
        }
        store_.remove_ignored(path);
        change(on_main, [&] { ignored_.erase(path); });
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
        scan_notes notes;
        drop(report.gone, done, options.on_main, [&] { notes = store_notes(report); });
        apply(notes, options.on_main);
        summary.tracks_unchanged = done.tracks_unchanged + report.tracks_unchanged;
        summary.absent = std::move(report.absent);
        summary.problems = std::move(report.problems);
        summary.is_stopped = report.is_stopped;
    } catch (...) {
        notify(done);
        throw;
    }
    summary.tracks_added = done.changes.added.size();
    summary.tracks_updated = done.changes.modified.size();
    summary.tracks_removed = done.changes.removed.size();
    summary.tracks_moved = done.tracks_moved;
    summary.unclear = std::move(done.unclear);
    notify(done);
    return summary;
}

void media_library::save(std::vector<scanned_file>&& files, std::uint64_t scan, outcome& done,
                         const main_thread_runner& on_main) {
    store(files, scan);
    change_each(files.size(), on_main, [&](std::size_t i) { apply(std::move(files[i]), done); });
}

/// Files that have changed since they were read are left out: they are read again by the next scan, or are being read by
/// whoever has changed them. So are files that have left the library meanwhile.
void media_library::store(std::vector<scanned_file>& files, std::uint64_t scan) {
    sqlite::transaction saving(store_.database());
    std::erase_if(files, [](const scanned_file& each) { return !is_still(each.path, each.file.stamp); });
    {
        const std::shared_lock lock(files_mutex_);
        for (auto& [path, file, tracks] : files) {
            const auto known = files_.find(path);
            const bool is_known = known != files_.end();
            if (is_known) {
                file.id = known->second.id;
                for (const auto& track : known->second.tracks) track->hold_info();
            }
            file.arrived = is_known && !is_other_sound(known->second, file) ? known->second.arrived : scan;
            last_arrival_ = std::max(last_arrival_, file.arrived);
        }
    }
    std::erase_if(files, [this](scanned_file& each) {
        each.file.id = store_.put_file(each.path, each.file, each.tracks);
        return each.file.id == 0;
    });
    saving.commit();
}

void media_library::apply(scanned_file&& scanned, outcome& done) {
    auto found = files_.find(scanned.path);
    const bool is_new = found == files_.end();
    if (is_new)
        found = files_.add(
            tracks_.obtain(scanned.path, scanned.tracks.empty() ? 0 : scanned.tracks.front().subsong)->location().path);
    const auto place = found;
    const auto path = place->first;
    auto& known = place->second;
    const bool is_other = is_other_sound(known, scanned.file);
    if (is_other) done.displaced.push_back(sound_at(path, known, scan_of(folders_, known.folder)));
    std::vector<track_ptr> tracks;
    tracks.reserve(scanned.tracks.size());
    for (auto& fresh : scanned.tracks) {
        const auto old =
            std::ranges::find_if(known.tracks, [&](const track_ptr& each) { return is_same_track(each, fresh); });
        if (old != known.tracks.end()) {
            tracks.push_back(*old);
            update(*old, std::move(fresh.info), is_other, done);
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

void media_library::drop(std::span<const std::string> gone, outcome& done, const main_thread_runner& on_main,
                         const std::function<void()>& more) {
    moved_files moved;
    std::vector<std::int64_t> ids;
    {
        const std::shared_lock lock(files_mutex_);
        moved = find_moved_files(files_, folders_, gone, std::move(done.displaced));
        for (const auto& path : gone) {
            const auto& file = files_.at(path);
            for (const auto& track : file.tracks) track->hold_info();
            ids.push_back(file.id);
        }
    }
    {
        sqlite::transaction dropping(store_.database());
        for (const auto id : ids) store_.remove_file(id);
        for (const auto& path : moved.paths) store_.forget_edits(path);
        for (const auto& [track, before, after, from] : moved.edits)
            store_.put_edit({track->location().path, {from->subsong, before->info()}, from->path});
        library_store::moved_locations places;
        for (const auto& [track, before, after, from] : moved.edits) places.emplace(*from, track->location());
        if (!places.empty()) store_.move_entries(places);
        more();
        dropping.commit();
    }
    change_each(gone.size(), on_main, [&](std::size_t i) {
        const auto found = files_.find(gone[i]);
        done.changes.removed.insert(done.changes.removed.end(), found->second.tracks.begin(), found->second.tracks.end());
        files_.erase(found);
    });
    // An edit assumed from the length alone is none if either sound was found elsewhere.
    std::erase_if(done.assumed, [&](const track_edit& each) { return moved.paths.contains(each.track->location().path); });
    done.tracks_moved = moved.edits.size();
    std::ranges::move(moved.edits, std::back_inserter(done.changes.edited));
    done.unclear = std::move(moved.unclear);
}

/// Called inside a transaction.
media_library::scan_notes media_library::store_notes(const scan_report& report) {
    scan_notes notes;
    {
        const std::shared_lock lock(files_mutex_);
        for (const auto& path : report.on_other_device) {
            const auto found = files_.find(path);
            if (found != files_.end() && found->second.device != found->second.seen_on)
                notes.on_other_device.push_back({path, found->second.id, found->second.seen_on});
        }
        for (const auto& folder : folders_) {
            const bool is_seen = std::ranges::find(report.folders_seen, folder.id) != report.folders_seen.end();
            if (report.is_stopped || !is_seen || folder.scanned >= last_arrival_) continue;
            notes.folders.push_back(folder);
            notes.folders.back().scanned = scan_number_;
        }
    }
    for (const auto& [path, file, device] : notes.on_other_device) store_.set_device(file, device);
    for (const auto& folder : notes.folders) store_.set_scanned(folder);
    return notes;
}

void media_library::apply(const scan_notes& notes, const main_thread_runner& on_main) {
    change_each(notes.on_other_device.size(), on_main, [&](std::size_t i) {
        const auto& [path, file, device] = notes.on_other_device[i];
        if (const auto found = files_.find(path); found != files_.end()) found->second.device = device;
    });
    for (const auto& folder : notes.folders)
        change(on_main, [&] { std::ranges::find(folders_, folder.id, &library_folder::id)->scanned = folder.scanned; });
}

void media_library::notify(outcome& done) {
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
    notify(done);
    return problems;
}

std::optional<library_file> media_library::library_file_at(const std::string& path) const {
    const std::shared_lock lock(files_mutex_);
    const auto known = files_.find(path);
    return known == files_.end() ? std::nullopt : std::optional(known->second);
}

edit_portions media_library::unfinished_edits() {
    if (!store_.has_edits()) return [] { return std::vector<track_edit>(); };
    return [this, stored = std::make_shared<stored_edits>(store_)] {
        std::vector<track_edit> edits;
        while (edits.size() < edits_of_portion) {
            const auto next = stored->next();
            if (!next) break;
            if (auto edit = edit_of(*next)) edits.push_back(*std::move(edit));
        }
        return edits;
    };
}

/// Empty when the track was never met since, or says what it said then. Its handle outlives its file.
std::optional<track_edit> media_library::edit_of(const stored_edit& stored) const {
    const auto track = tracks_.find(stored.path, stored.before.subsong);
    if (!track) return std::nullopt;
    auto old = make_snapshot(stored.before.info);
    auto now = track->info();
    const bool is_edit =
        now && (stored.path_before || !(old->info() == now->info())) && is_same_sound(old->info(), now->info());
    if (!is_edit) return std::nullopt;
    track_edit edit{track, std::move(old), std::move(now)};
    if (stored.path_before) edit.location_before = {*stored.path_before, stored.before.subsong};
    return edit;
}

}  // namespace ostrevan::library
