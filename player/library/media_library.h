#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <shared_mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/cue_files.h"
#include "player/library/folder_rules.h"
#include "player/library/kept_list.h"
#include "player/library/library_changes.h"
#include "player/library/library_files.h"
#include "player/library/library_load.h"
#include "player/library/library_store.h"
#include "player/library/playlists.h"
#include "player/library/queue_store.h"
#include "player/library/scan_summary.h"
#include "player/library/stored_infos.h"
#include "player/library/track_table.h"

namespace ostrevan::library {

/// The result of a request for several paths.
struct path_changes {
    std::size_t tracks_removed = 0;
    std::vector<file_problem> refused;
};

/// Which tracks `refresh_tracks` reads again.
enum class refresh_mode { unknown_only, if_changed, always };

/// The tracks of the folders added by the user, stored in a database and exposed as handles. [main-thread] Long work blocks
/// its caller, and may be called on another thread, one at a time: it changes the library on the main thread, in pieces of
/// about a millisecond.
class media_library {
public:
    /// Opens or creates `database_path`. Table and observer must outlive the library. Throws sqlite::error.
    media_library(const std::string& database_path, track_table& tracks, info_reader reader, library_observer& observer);
    /// Reads the database, unless that is done, without looking at any file. Before it, there are no tracks, and nothing
    /// else may be called but `is_enabled` and `folders`. `keys` may be null. Throws sqlite::error.
    void load(key_maker* keys = nullptr);

    /// Whether the user has added a folder.
    [[nodiscard]] bool is_enabled() const noexcept { return !folders_.empty(); }
    [[nodiscard]] const std::vector<library_folder>& folders() const noexcept { return folders_; }
    /// By path, then subsong. Valid until the library changes.
    [[nodiscard]] const std::vector<track_ptr>& items() const;
    /// The same list, as it is now. [any-thread]
    [[nodiscard]] kept_list<track_ptr>::pointer sorted_items() const;
    /// In no particular order, which is much cheaper. [any-thread]
    [[nodiscard]] kept_list<metadb_handle_ptr>::pointer unordered_items() const;
    /// As in `track_table`. Nothing is known afterwards.
    void leave_behind();
    /// The tracks of one file; none if it is not in the library.
    [[nodiscard]] std::span<const track_ptr> items_of_file(const std::string& path) const;

    /// Files and folders below a library folder that are not part of the library.
    [[nodiscard]] const ignored_paths& ignored() const noexcept { return ignored_; }

    // Long work. The following functions notify the observer before they return or throw sqlite::error; after that the
    // library is in the state of the last portion saved. An unsuitable path is refused with the reason; the others are
    // processed.

    /// Adds the folders and scans them.
    scan_summary add_folders(std::span<const std::string> paths, const scan_options& options = {});
    /// The files are not touched.
    path_changes remove_folders(std::span<const std::string> paths, const main_thread_runner& on_main = run_here);
    /// Scans all folders.
    scan_summary rescan(const scan_options& options = {});
    /// Scans the library folders at or around these paths.
    scan_summary rescan(std::span<const std::string> paths, const scan_options& options = {});
    path_changes ignore(std::span<const std::string> paths, const main_thread_runner& on_main = run_here);
    /// The next scan includes them again.
    path_changes stop_ignoring(std::span<const std::string> paths, const main_thread_runner& on_main = run_here);

    /// Reads files again, also for tracks outside the library. Publishes new snapshots, stores those of the library, and
    /// notifies the observer of modified, added and removed tracks, but not of edits, which are the caller's. Returns the
    /// files that could not be read; their tracks are unchanged. [any-thread]
    std::vector<file_problem> refresh_tracks(std::span<const track_ptr> tracks, refresh_mode mode,
                                             const main_thread_runner& on_main = run_here);

    /// Edits stored since the last call of `forget_edits`, also by an earlier process that may have ended before acting on
    /// them. Each ends in the current information of the track. For use while the library lives.
    [[nodiscard]] edit_portions unfinished_edits();
    /// Where tracks could not be read, edits may not have been seen, and stay for the next start.
    void forget_edits() {
        if (is_whole()) store_.forget_edits();
    }
    /// False when the information about a track could not be read. [any-thread]
    [[nodiscard]] bool is_whole() const noexcept { return !infos_ || !infos_->has_failed(); }

    [[nodiscard]] library::playlists& playlists() noexcept { return playlists_; }
    [[nodiscard]] queue_store& queue() noexcept { return queue_; }

private:
    struct outcome;
    struct scan_notes;

    void enter(loaded_files&& loaded, key_maker* keys);
    scan_summary scan(std::span<const library_folder> folders, const scan_options& options);
    /// Changes files, folders or ignored paths on the main thread.
    void change(const main_thread_runner& on_main, const std::function<void()>& work);
    /// The same for `work` on each of `count` things, in pieces.
    void change_each(std::size_t count, const main_thread_runner& on_main, const std::function<void(std::size_t)>& work);
    void save(std::vector<scanned_file>&& files, std::uint64_t scan, outcome& done, const main_thread_runner& on_main);
    void store(std::vector<scanned_file>& files, std::uint64_t scan);
    void apply(scanned_file&& file, outcome& done);
    static void update(const track_ptr& track, file_info&& info, bool is_other_sound, outcome& done);
    [[nodiscard]] std::vector<std::string> paths_where(
        const std::function<bool(std::string_view path, const library_file& file)>& is_wanted) const;
    /// Removes files, with `more` in the same transaction, and lets moved files keep their tracks.
    void drop(std::span<const std::string> gone, outcome& done, const main_thread_runner& on_main,
              const std::function<void()>& more);
    scan_notes store_notes(const scan_report& report);
    void apply(const scan_notes& notes, const main_thread_runner& on_main);
    [[nodiscard]] std::optional<library_file> library_file_at(const std::string& path) const;
    [[nodiscard]] std::optional<track_edit> edit_of(const stored_edit& stored) const;
    void notify(outcome& done);

    library_store store_;
    track_table& tracks_;
    info_reader reader_;
    library_observer& observer_;
    std::unique_ptr<stored_infos> infos_;
    library::playlists playlists_;
    queue_store queue_;
    // These are changed on the main thread, with the mutex, and read there without it.
    mutable std::shared_mutex files_mutex_;
    library_files files_;
    std::vector<library_folder> folders_;
    ignored_paths ignored_;
    bool is_loaded_ = false;
    std::uint64_t changes_ = 1;
    std::atomic<std::uint64_t> scan_number_ = 0;  // of the last scan
    std::uint64_t last_arrival_ = 0;              // used with the lock of the database
    mutable kept_list<track_ptr> sorted_;
    mutable kept_list<metadb_handle_ptr> unordered_;
};

}  // namespace ostrevan::library
