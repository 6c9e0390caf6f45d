#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/cue_files.h"
#include "player/library/folder_rules.h"
#include "player/library/ignored_paths.h"
#include "player/library/library_changes.h"
#include "player/library/library_files.h"
#include "player/library/library_store.h"
#include "player/library/playlists.h"
#include "player/library/scan_summary.h"
#include "player/library/track_table.h"

namespace ostrevan::library {

/// What became of a request for several paths.
struct path_changes {
    std::size_t tracks_removed = 0;
    std::vector<file_problem> refused;
};

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

    // The observer is told before these return or throw; what they throw is sqlite::error, after which the library is as far
    // as the last portion that could be saved. A path that does not fit is refused with the reason; the others are served.

    /// Adds the folders and scans them.
    scan_summary add_folders(std::span<const std::string> paths, const scan_options& options = {});
    /// Nothing happens to the files.
    path_changes remove_folders(std::span<const std::string> paths);
    /// Scans all folders.
    scan_summary rescan(const scan_options& options = {});
    /// Scans the folders of the library that these paths are, or lie in.
    scan_summary rescan(std::span<const std::string> paths, const scan_options& options = {});

    /// Files and folders inside the library that are not to be part of it.
    [[nodiscard]] const ignored_paths& ignored() const noexcept { return ignored_; }
    path_changes ignore(std::span<const std::string> paths);
    /// The next scan looks at them again.
    path_changes stop_ignoring(std::span<const std::string> paths);

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
    struct outcome;

    void load();
    scan_summary scan(std::span<const library_folder> folders, const scan_options& options);
    void save(std::vector<scanned_file>&& files, std::uint64_t scan, outcome& done);
    void apply(scanned_file&& file, bool is_other_sound, outcome& done);
    static void update(const track_ptr& track, std::string_view encoded, bool is_other_sound, outcome& done);
    /// Drops files, after what else is to be done in the same transaction, and lets those that have moved follow.
    void drop(std::span<const std::string> gone, outcome& done, const std::function<void()>& more);
    void note_scan(const scan_report& report);
    void notify(outcome& done);

    library_store store_;
    track_table& tracks_;
    info_reader reader_;
    library_observer& observer_;
    library::playlists playlists_;
    std::vector<library_folder> folders_;
    library_files files_;
    ignored_paths ignored_;
    std::uint64_t scan_number_ = 0;  // of the last scan
    std::uint64_t last_arrival_ = 0;
    mutable std::vector<track_ptr> items_;
    mutable bool items_valid_ = false;
};

}  // namespace ostrevan::library
