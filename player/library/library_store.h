#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/library/stored_file.h"
#include "player/sqlite/database.h"

namespace ostrevan::library {

/// A folder that the user has added: absolute, lexically normal, symbolic links as the user gave them.
struct library_folder {
    std::int64_t id = 0;
    std::string path;
    /// A scan that went through the folder to its end: the last one, or one since when nothing new has come to the library.
    std::uint64_t scanned = 0;
};

/// The database of the library, `library.sqlite`. Paths are kept as bytes, because file names need not be UTF-8. Used by one
/// thread at a time; every function throws sqlite::error, whose text names the file and the way out.
class library_store {
public:
    explicit library_store(std::string path);

    [[nodiscard]] std::vector<library_folder> folders() const;
    library_folder add_folder(const std::string& path);
    /// With all its files and tracks.
    void remove_folder(std::int64_t id);
    void set_scanned(const library_folder& folder);

    [[nodiscard]] std::vector<std::string> ignored() const;
    void add_ignored(const std::string& path);
    void remove_ignored(const std::string& path);

    /// Every file with its tracks, in the order in which they were first stored.
    void load(const std::function<void(stored_file&&, std::vector<stored_track>&&)>& on_file) const;

    // To be called inside a transaction on `database()`.
    /// Adds the file, or replaces what is stored under its id; answers the id.
    std::int64_t put_file(const stored_file& file, std::span<const stored_track> tracks);
    void remove_file(std::int64_t id);
    void set_device(std::int64_t file, std::uint64_t device);

    /// What `put_file` has put something else in place of and what `put_edit` has added, oldest first, until it is
    /// forgotten.
    [[nodiscard]] std::vector<stored_edit> edits() const;
    void put_edit(const stored_edit& edit);
    /// Those of one file.
    void forget_edits(const std::string& path);
    void forget_edits();

    [[nodiscard]] sqlite::database& database() noexcept { return database_; }

private:
    void clear_file(std::int64_t id);

    sqlite::database database_;
    sqlite::statement insert_file_, update_file_, delete_file_;
    sqlite::statement insert_track_, delete_tracks_;
    sqlite::statement insert_edit_, delete_edits_;
    sqlite::statement update_device_;
    sqlite::statement insert_source_, delete_sources_;
};

/// A path or other text as it is bound to a BLOB column, and back.
inline std::span<const std::byte> to_blob(std::string_view text) noexcept { return std::as_bytes(std::span(text)); }
inline std::string from_blob(std::span<const std::byte> blob) {
    return {reinterpret_cast<const char*>(blob.data()), blob.size()};
}

}  // namespace ostrevan::library
