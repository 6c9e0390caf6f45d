#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/cue_files.h"
#include "player/library/folder_rules.h"
#include "player/library/library_changes.h"
#include "player/library/library_files.h"
#include "player/library/library_store.h"
#include "player/library/playlists.h"
#include "player/library/scan_types.h"
#include "player/library/track_table.h"

namespace ostrevan::library {

/// What a scan did, for the user.
struct scan_summary {
    std::size_t tracks_added = 0;
    std::size_t tracks_updated = 0;
    std::size_t tracks_unchanged = 0;
    std::size_t tracks_removed = 0;
    std::vector<absent_place> absent;
    std::vector<file_problem> problems;
    bool is_stopped = false;  // what was read before is saved; the next scan goes on
};

/// Sentences for the user: what could not be looked at, that its tracks were kept, and what to do.
std::string describe(const absent_place& place);

/// Whose information `refresh_tracks` reads from the file.
enum class refresh_mode { unknown_only, if_changed, always };

/// The tracks of the folders that the user has added, kept in a database and shown through handles. [main-thread] A scan
/// blocks its caller and works on threads of its own.
class media_library {
public:
    /// Opens `database_path`, or makes it, and takes up what it holds without looking at any file. Table and observer must
    /// outlive the library. Throws sqlite::error.
    media_library(const std::string& database_path, track_table& tracks, info_reader reader, library_observer& observer);

    /// False while the user has added no folder.
    [[nodiscard]] bool is_enabled() const noexcept { return !folders_.empty(); }
    [[nodiscard]] const std::vector<library_folder>& folders() const noexcept { return folders_; }
    /// By path, then subsong. Valid until the library changes.
    [[nodiscard]] const std::vector<track_ptr>& items() const;

    // The observer is told before these return or throw; what they throw is library_error before anything has changed, or
    // sqlite::error, after which the library is as far as the last portion that could be saved.

    /// Adds all of the folders or none, and scans them.
    scan_summary add_folders(std::span<const std::string> paths, const scan_options& options = {});
    /// Answers the number of tracks that have left the library. Nothing happens to the files.
    std::size_t remove_folders(std::span<const std::string> paths);
    scan_summary rescan(const scan_options& options = {});

    /// Reads files again, also of tracks that are not in the library: new snapshots are published, those of the library
    /// stored, and the observer told of what is modified, added or removed; never of edits, since they are the caller's.
    /// Answers the files that could not be read, whose tracks stay as they are.
    std::vector<file_problem> refresh_tracks(std::span<const track_ptr> tracks, refresh_mode mode);

    /// Edits that were stored since `forget_edits` was last called, in this process or an earlier one, each leading to what
    /// the track says now: for those who follow edits, and may have been cut off before they had done so.
    [[nodiscard]] std::vector<track_edit> unfinished_edits() const;
    void forget_edits() { store_.forget_edits(); }

    [[nodiscard]] library::playlists& playlists() noexcept { return playlists_; }

private:
    void load();
    scan_summary scan(std::span<const library_folder> folders, const scan_options& options);
    // Both answer the number of tracks whose information is what it was.
    std::size_t save(std::vector<scanned_file>&& files, library_changes& changes);
    std::size_t apply(scanned_file&& file, library_changes& changes);
    /// False when the track says what it said before.
    static bool update(const track_ptr& track, std::string_view encoded, library_changes& changes);
    void drop(std::span<const std::string> paths, library_changes& changes);
    void notify(const library_changes& changes);

    library_store store_;
    track_table& tracks_;
    info_reader reader_;
    library_observer& observer_;
    library::playlists playlists_;
    std::vector<library_folder> folders_;
    library_files files_;
    mutable std::vector<track_ptr> items_;
    mutable bool items_valid_ = false;
};

}  // namespace ostrevan::library
