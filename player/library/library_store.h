#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/library_file.h"
#include "player/sqlite/database.h"

namespace ostrevan::library {

/// A folder added by the user: absolute, lexically normal, with symbolic links kept.
struct library_folder {
    std::int64_t id = 0;
    std::string path;
    /// The last scan that completed the folder, or an earlier one if nothing new has come to the library since.
    std::uint64_t scanned = 0;
};

/// The library database, `library.sqlite`. Paths are stored as bytes, because file names need not be UTF-8. Used by
/// one thread at a time: all functions hold the lock of `database()`, or want it held. Every one throws sqlite::error, whose
/// text names the file and the remedy.
class library_store {
public:
    explicit library_store(std::string path);

    [[nodiscard]] std::vector<library_folder> folders() const;
    library_folder add_folder(const std::string& path);
    /// Removes its files and tracks as well.
    void remove_folder(std::int64_t id);
    void set_scanned(const library_folder& folder);

    [[nodiscard]] std::vector<std::string> ignored() const;
    void add_ignored(const std::string& path);
    void remove_ignored(const std::string& path);

    /// For reading on another thread while this connection writes.
    [[nodiscard]] std::unique_ptr<sqlite::database> second_connection() const;

    // To be called inside a transaction on `database()`.
    /// Adds the file, or replaces the one with its id; returns the id, or 0 when there is none with that id any more.
    std::int64_t put_file(const std::string& path, const stored_file& file, std::span<const stored_track> tracks);
    void remove_file(std::int64_t id);
    void set_device(std::int64_t file, std::uint64_t device);
    using moved_locations = std::map<playable_location, playable_location>;
    /// Lets the entries of playlists and of the queue follow their tracks.
    void move_entries(const moved_locations& moved);

    /// Whether any edit recorded by `put_file` or `put_edit` has not been forgotten yet.
    [[nodiscard]] bool has_edits();
    void put_edit(const stored_edit& edit);
    /// Forgets the edits of one file.
    void forget_edits(const std::string& path);
    void forget_edits();

    [[nodiscard]] sqlite::database& database() noexcept { return database_; }
    [[nodiscard]] const sqlite::database& database() const noexcept { return database_; }

private:
    void clear_file(std::int64_t id);

    sqlite::database database_;
    sqlite::statement insert_file_, update_file_, delete_file_;
    sqlite::statement insert_track_, delete_tracks_;
    sqlite::statement insert_edit_, delete_edits_;
    sqlite::statement update_device_;
    sqlite::statement insert_source_, delete_sources_;
};

/// The edits that the library held when this was made, read one by one.
class stored_edits {
public:
    explicit stored_edits(const library_store& of);
    /// The oldest first, without damaged ones. Empty at the end.
    [[nodiscard]] std::optional<stored_edit> next();

private:
    std::unique_ptr<sqlite::database> database_;
    sqlite::statement rows_;
    bool at_end_ = false;
};

/// Converts text to the BLOB form of a column, and back.
inline std::span<const std::byte> to_blob(std::string_view text) noexcept { return std::as_bytes(std::span(text)); }
inline std::string_view text_of(std::span<const std::byte> blob) noexcept {
    return {reinterpret_cast<const char*>(blob.data()), blob.size()};
}
inline std::string from_blob(std::span<const std::byte> blob) { return std::string(text_of(blob)); }

}  // namespace ostrevan::library
