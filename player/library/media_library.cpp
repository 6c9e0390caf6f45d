#include "player/library/media_library.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "player/library/audio_claims.h"
#include "player/library/directory.h"
#include "player/library/info_codec.h"
#include "player/library/read_files.h"
#include "player/library/scanner.h"

namespace ostrevan::library {
namespace {

bool is_same_track(const track_ptr& handle, const stored_track& scanned) noexcept {
    return handle->location().subsong == scanned.subsong;
}

}  // namespace

std::string describe(const absent_place& place) {
    std::string text = place.path;
    const std::string kept =
        place.tracks_kept == 0 ? "" : " Its " + std::to_string(place.tracks_kept) + " tracks were kept in the library.";
    if (!place.is_library_folder)
        return text + " cannot be looked into: " + place.reason + "." + kept +
               " Make it readable, or delete it if it is not needed.";
    return text + " is not there: " + place.reason + "." + kept +
           " Connect the disk that it is on, or remove this folder from the library to drop its tracks.";
}

media_library::media_library(const std::string& database_path, track_table& tracks, info_reader reader,
                             library_observer& observer)
    : store_(database_path),
      tracks_(tracks),
      reader_(std::move(reader)),
      observer_(observer),
      playlists_(store_.database()) {
    load();
}

void media_library::load() {
    folders_ = store_.folders();
    const auto count = static_cast<std::size_t>(store_.database().query_integer("SELECT count(*) FROM files"));
    files_.reserve(count);
    tracks_.reserve(count);
    store_.load([this](stored_file&& file, std::vector<stored_track>&& tracks) {
        library_file known{file.id, file.folder, file.stamp, {}, std::move(file.sources), 0};
        known.tracks.reserve(tracks.size());
        for (auto& [subsong, encoded] : tracks) {
            known.tracks.push_back(tracks_.obtain(file.path, subsong));
            known.tracks.back()->publish_encoded(std::move(encoded));
        }
        files_.emplace(std::move(file.path), std::move(known));
    });
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
    const auto fresh = check_new_folders(paths, folders_);
    std::vector<library_folder> added;
    sqlite::transaction adding(store_.database());
    for (const auto& path : fresh) added.push_back(store_.add_folder(path));
    adding.commit();
    folders_.insert(folders_.end(), added.begin(), added.end());
    return scan(added, options);
}

std::size_t media_library::remove_folders(std::span<const std::string> paths) {
    const auto leaving = check_known_folders(paths, folders_);
    sqlite::transaction removing(store_.database());
    for (const auto& folder : leaving) store_.remove_folder(folder.id);
    removing.commit();

    const auto is_leaving = [&](std::int64_t id) {
        return std::ranges::find(leaving, id, &library_folder::id) != leaving.end();
    };
    library_changes changes;
    std::erase_if(files_, [&](const auto& each) {
        const auto& file = each.second;
        if (!is_leaving(file.folder)) return false;
        changes.removed.insert(changes.removed.end(), file.tracks.begin(), file.tracks.end());
        return true;
    });
    std::erase_if(folders_, [&](const library_folder& each) { return is_leaving(each.id); });
    notify(changes);
    return changes.removed.size();
}

scan_summary media_library::rescan(const scan_options& options) { return scan(folders_, options); }

scan_summary media_library::scan(std::span<const library_folder> folders, const scan_options& options) {
    scan_summary summary;
    library_changes changes;
    scan_report report;
    try {
        report = scan_folders(folders, files_, reader_, options, [&](std::vector<scanned_file>&& files) {
            summary.tracks_unchanged += save(std::move(files), changes);
        });
        drop(report.gone, changes);
    } catch (...) {
        notify(changes);
        throw;
    }
    notify(changes);

    summary.tracks_added = changes.added.size();
    summary.tracks_updated = changes.modified.size();
    summary.tracks_removed = changes.removed.size();
    summary.tracks_unchanged += report.tracks_unchanged;
    summary.absent = std::move(report.absent);
    summary.problems = std::move(report.problems);
    summary.is_stopped = report.is_stopped;
    return summary;
}

std::size_t media_library::save(std::vector<scanned_file>&& files, library_changes& changes) {
    sqlite::transaction saving(store_.database());
    for (auto& [file, tracks, seen] : files) {
        const auto known = files_.find(file.path);
        if (known != files_.end()) file.id = known->second.id;
        file.id = store_.put_file(file, tracks);
    }
    saving.commit();
    std::size_t unchanged = 0;
    for (auto& file : files) unchanged += apply(std::move(file), changes);
    return unchanged;
}

std::size_t media_library::apply(scanned_file&& scanned, library_changes& changes) {
    items_valid_ = false;
    auto& known = files_[scanned.file.path];
    std::vector<track_ptr> tracks;
    tracks.reserve(scanned.tracks.size());
    std::size_t unchanged = 0;
    for (auto& fresh : scanned.tracks) {
        const auto old =
            std::ranges::find_if(known.tracks, [&](const track_ptr& each) { return is_same_track(each, fresh); });
        if (old != known.tracks.end()) {
            tracks.push_back(*old);
            unchanged += update(*old, fresh.encoded, changes) ? 0 : 1;
        } else {
            tracks.push_back(tracks_.obtain(scanned.file.path, fresh.subsong));
            tracks.back()->publish_encoded(std::move(fresh.encoded));
            changes.added.push_back(tracks.back());
        }
    }
    for (const auto& old : known.tracks)
        if (std::ranges::find(tracks, old) == tracks.end()) changes.removed.push_back(old);
    auto& [file, unused, seen] = scanned;
    known = {file.id, file.folder, file.stamp, std::move(tracks), std::move(file.sources), seen};
    return unchanged;
}

bool media_library::update(const track_ptr& track, std::string_view encoded, library_changes& changes) {
    const auto before = track->info();
    const auto after = make_snapshot(decode_info(encoded));
    if (before && before->info() == after->info()) return false;
    track->publish(after);
    changes.modified.push_back(track);
    if (before && is_same_sound(before->info(), after->info())) changes.edited.push_back({track, before, after});
    return true;
}

void media_library::drop(std::span<const std::string> paths, library_changes& changes) {
    if (paths.empty()) return;
    sqlite::transaction removing(store_.database());
    for (const auto& path : paths) store_.remove_file(files_.at(path).id);
    removing.commit();
    for (const auto& path : paths) {
        const auto found = files_.find(path);
        changes.removed.insert(changes.removed.end(), found->second.tracks.begin(), found->second.tracks.end());
        files_.erase(found);
    }
}

void media_library::notify(const library_changes& changes) {
    items_valid_ = false;
    if (!changes.empty()) observer_.on_library_changed(changes);
}

std::vector<file_problem> media_library::refresh_tracks(std::span<const track_ptr> tracks, refresh_mode mode) {
    std::vector<file_problem> problems;
    library_changes changes;
    std::vector<scanned_file> of_library;
    std::set<std::string_view> done;
    for (const auto& track : tracks) {
        const auto& path = track->location().path;
        if (mode == refresh_mode::unknown_only && track->has_info()) continue;
        if (!done.insert(path).second) continue;
        try {
            const auto stamp = status_of(path).stamp;
            const auto known = files_.find(path);
            if (known == files_.end()) {
                for (const auto& [subsong, info] : read_tracks({path, stamp, 0}, reader_).tracks) {
                    changes.modified.push_back(tracks_.obtain(path, subsong));
                    changes.modified.back()->publish(info);
                }
            } else if (mode != refresh_mode::if_changed || !is_unchanged(known->second, stamp)) {
                of_library.push_back(scan_file({path, stamp, known->second.folder}, reader_));
            }
        } catch (const std::exception& failure) {
            problems.push_back({path, reason_of(failure, path)});
        }
    }
    if (!of_library.empty()) save(std::move(of_library), changes);
    changes.edited.clear();
    notify(changes);
    return problems;
}

std::vector<track_edit> media_library::unfinished_edits() const {
    std::vector<track_edit> edits;
    for (const auto& [path, before] : store_.edits()) {
        const auto known = files_.find(path);
        if (known == files_.end()) continue;
        const auto& tracks = known->second.tracks;
        // clang 14 lets a lambda capture a structured binding only under another name.
        const auto track = std::ranges::find_if(
            tracks, [&scanned = before](const track_ptr& each) { return is_same_track(each, scanned); });
        if (track == tracks.end()) continue;
        auto old = make_snapshot(decode_info(before.encoded));
        auto now = (*track)->info();
        if (now && !(old->info() == now->info()) && is_same_sound(old->info(), now->info()))
            edits.push_back({*track, std::move(old), std::move(now)});
    }
    return edits;
}

}  // namespace ostrevan::library
