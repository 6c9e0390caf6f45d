#include "player/library/library_store.h"

#include <tuple>

#include "player/library/older_info.h"

namespace ostrevan::library {
namespace {

constexpr const char* upgrades[] = {
    "CREATE TABLE edits(path BLOB NOT NULL, subsong INTEGER NOT NULL, info BLOB NOT NULL)",
    R"(
ALTER TABLE folders ADD COLUMN scanned INTEGER NOT NULL DEFAULT 0;
ALTER TABLE files ADD COLUMN device INTEGER NOT NULL DEFAULT 0;
ALTER TABLE files ADD COLUMN sound INTEGER;
ALTER TABLE files ADD COLUMN arrived INTEGER NOT NULL DEFAULT 0;
ALTER TABLE edits ADD COLUMN path_before BLOB;
CREATE TABLE ignored(path BLOB NOT NULL PRIMARY KEY) WITHOUT ROWID;
)",
    R"(
CREATE TABLE queue(
    id INTEGER PRIMARY KEY,
    place INTEGER NOT NULL DEFAULT 0,
    seconds REAL NOT NULL DEFAULT 0,
    repeat INTEGER NOT NULL DEFAULT 0,
    shuffle INTEGER NOT NULL DEFAULT 0,
    volume REAL NOT NULL DEFAULT 100,
    round BLOB NOT NULL DEFAULT x'');
CREATE TABLE queue_entries(
    position INTEGER PRIMARY KEY,
    path BLOB NOT NULL,
    subsong INTEGER NOT NULL);
)",
    "UPDATE tracks SET info = info_of_version_5(info); UPDATE edits SET info = info_of_version_5(info)",
};

// Scans only append files and tracks. There is no index on the path, since the library has all paths in memory.
constexpr sqlite::format library_format{0x4F4C4942,  // "OLIB"
                                        5,
                                        R"(
CREATE TABLE folders(
    id INTEGER PRIMARY KEY,
    path BLOB NOT NULL UNIQUE,
    scanned INTEGER NOT NULL DEFAULT 0);
CREATE TABLE files(
    id INTEGER PRIMARY KEY,
    folder INTEGER NOT NULL REFERENCES folders(id) ON DELETE CASCADE,
    path BLOB NOT NULL,
    size INTEGER NOT NULL,
    mtime INTEGER NOT NULL,
    device INTEGER NOT NULL DEFAULT 0,
    sound INTEGER,
    arrived INTEGER NOT NULL DEFAULT 0);
CREATE TABLE tracks(
    file INTEGER NOT NULL REFERENCES files(id) ON DELETE CASCADE,
    subsong INTEGER NOT NULL,
    info BLOB NOT NULL,
    PRIMARY KEY(file, subsong)) WITHOUT ROWID;
CREATE TABLE sources(
    file INTEGER NOT NULL REFERENCES files(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    path BLOB NOT NULL,
    size INTEGER NOT NULL,
    mtime INTEGER NOT NULL,
    PRIMARY KEY(file, position)) WITHOUT ROWID;
CREATE TABLE playlists(
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE);
CREATE TABLE playlist_entries(
    playlist INTEGER NOT NULL REFERENCES playlists(id) ON DELETE CASCADE,
    position INTEGER NOT NULL,
    path BLOB NOT NULL,
    subsong INTEGER NOT NULL,
    PRIMARY KEY(playlist, position)) WITHOUT ROWID;
CREATE TABLE edits(
    path BLOB NOT NULL,
    subsong INTEGER NOT NULL,
    info BLOB NOT NULL,
    path_before BLOB);
CREATE TABLE ignored(path BLOB NOT NULL PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE queue(
    id INTEGER PRIMARY KEY,
    place INTEGER NOT NULL DEFAULT 0,
    seconds REAL NOT NULL DEFAULT 0,
    repeat INTEGER NOT NULL DEFAULT 0,
    shuffle INTEGER NOT NULL DEFAULT 0,
    volume REAL NOT NULL DEFAULT 100,
    round BLOB NOT NULL DEFAULT x'');
CREATE TABLE queue_entries(
    position INTEGER PRIMARY KEY,
    path BLOB NOT NULL,
    subsong INTEGER NOT NULL);
)",        "library", upgrades, define_conversion};

std::int64_t as_integer(std::uint64_t number) noexcept { return static_cast<std::int64_t>(number); }
std::uint64_t as_number(std::int64_t integer) noexcept { return static_cast<std::uint64_t>(integer); }

}  // namespace

library_store::library_store(std::string path)
    : database_(std::move(path), library_format),
      insert_file_(database_.prepare("INSERT INTO files(folder, path, size, mtime, device, sound, arrived) "
                                     "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)")),
      update_file_(
          database_.prepare("UPDATE files SET folder=?1, path=?2, size=?3, mtime=?4, device=?5, sound=?6, arrived=?7 "
                            "WHERE id=?8")),
      delete_file_(database_.prepare("DELETE FROM files WHERE id=?1")),
      insert_track_(database_.prepare("INSERT OR REPLACE INTO tracks(file, subsong, info) VALUES(?1, ?2, ?3)")),
      delete_tracks_(database_.prepare("DELETE FROM tracks WHERE file=?1")),
      insert_edit_(database_.prepare(
          "INSERT INTO edits(path, subsong, info) SELECT path, subsong, info FROM tracks JOIN files ON id=file "
          "WHERE file=?1 AND subsong=?2 AND info<>?3")),
      delete_edits_(database_.prepare("DELETE FROM edits WHERE path=?1")),
      update_device_(database_.prepare("UPDATE files SET device=?2 WHERE id=?1")),
      insert_source_(database_.prepare("INSERT INTO sources(file, position, path, size, mtime) VALUES(?1, ?2, ?3, ?4, ?5)")),
      delete_sources_(database_.prepare("DELETE FROM sources WHERE file=?1")) {}

std::vector<library_folder> library_store::folders() const {
    std::vector<library_folder> result;
    auto query = database_.prepare("SELECT id, path, scanned FROM folders ORDER BY id");
    while (query.step()) result.push_back({query.integer(0), from_blob(query.blob(1)), as_number(query.integer(2))});
    return result;
}

library_folder library_store::add_folder(const std::string& path) {
    database_.prepare("INSERT INTO folders(path) VALUES(?1)").bind(1, to_blob(path)).run();
    return {database_.last_insert_id(), path, 0};
}

void library_store::remove_folder(std::int64_t id) {
    database_.prepare("DELETE FROM folders WHERE id=?1").bind(1, id).run();
}

void library_store::set_scanned(const library_folder& folder) {
    auto update = database_.prepare("UPDATE folders SET scanned=?2 WHERE id=?1");
    update.bind(1, folder.id).bind(2, as_integer(folder.scanned)).run();
}

std::vector<std::string> library_store::ignored() const {
    std::vector<std::string> result;
    auto query = database_.prepare("SELECT path FROM ignored");
    while (query.step()) result.push_back(from_blob(query.blob(0)));
    return result;
}

void library_store::add_ignored(const std::string& path) {
    database_.prepare("INSERT OR IGNORE INTO ignored(path) VALUES(?1)").bind(1, to_blob(path)).run();
}

void library_store::remove_ignored(const std::string& path) {
    const auto lock = database_.lock();
    database_.prepare("DELETE FROM ignored WHERE path=?1").bind(1, to_blob(path)).run();
}

std::unique_ptr<sqlite::database> library_store::second_connection() const {
    auto connection = std::make_unique<sqlite::database>(database_.file(), library_format);
    connection->execute("PRAGMA query_only = ON");
    return connection;
}

std::int64_t library_store::put_file(const std::string& path, const stored_file& file,
                                     std::span<const stored_track> tracks) {
    auto& put = file.id == 0 ? insert_file_ : update_file_;
    put.bind(1, file.folder).bind(2, to_blob(path)).bind(3, file.stamp.size).bind(4, file.stamp.mtime);
    put.bind(5, as_integer(file.device)).bind(7, as_integer(file.arrived));
    if (file.sound) put.bind(6, as_integer(*file.sound));
    else put.bind_null(6);
    if (file.id != 0) {
        for (const auto& track : tracks)
            insert_edit_.bind(1, file.id).bind(2, std::int64_t{track.subsong}).bind(3, to_blob(track.info.bytes())).run();
        put.bind(8, file.id);
        clear_file(file.id);
    }
    put.run();
    if (file.id != 0 && database_.changes() == 0) return 0;

    const std::int64_t id = file.id != 0 ? file.id : database_.last_insert_id();
    for (const auto& track : tracks)
        insert_track_.bind(1, id).bind(2, std::int64_t{track.subsong}).bind(3, to_blob(track.info.bytes())).run();
    for (std::size_t i = 0; i < file.sources.size(); ++i) {
        const auto& [source, stamp] = file.sources[i];
        insert_source_.bind(1, id)
            .bind(2, as_integer(i))
            .bind(3, to_blob(source))
            .bind(4, stamp.size)
            .bind(5, stamp.mtime)
            .run();
    }
    return id;
}

void library_store::clear_file(std::int64_t id) {
    delete_tracks_.bind(1, id).run();
    delete_sources_.bind(1, id).run();
}

void library_store::remove_file(std::int64_t id) { delete_file_.bind(1, id).run(); }

void library_store::set_device(std::int64_t file, std::uint64_t device) {
    update_device_.bind(1, file).bind(2, as_integer(device)).run();
}

bool library_store::has_edits() {
    const auto lock = database_.lock();
    return database_.query_integer("SELECT EXISTS(SELECT 1 FROM edits)") != 0;
}

stored_edits::stored_edits(const library_store& of)
    : database_(of.second_connection()),
      rows_(database_->prepare("SELECT path, subsong, info, path_before FROM edits ORDER BY rowid")) {}

std::optional<stored_edit> stored_edits::next() {
    while (!at_end_ && rows_.step()) {
        auto before = file_info::from_bytes(text_of(rows_.blob(2)));
        if (!before) continue;
        stored_edit edit{from_blob(rows_.blob(0)), {static_cast<std::uint32_t>(rows_.integer(1)), *std::move(before)}, {}};
        if (!rows_.is_null(3)) edit.path_before = from_blob(rows_.blob(3));
        return edit;
    }
    at_end_ = true;
    return std::nullopt;
}

void library_store::put_edit(const stored_edit& edit) {
    auto insert = database_.prepare("INSERT INTO edits(path, subsong, info, path_before) VALUES(?1, ?2, ?3, ?4)");
    insert.bind(1, to_blob(edit.path)).bind(2, std::int64_t{edit.before.subsong}).bind(3, to_blob(edit.before.info.bytes()));
    if (edit.path_before) insert.bind(4, to_blob(*edit.path_before));
    insert.run();
}

void library_store::forget_edits(const std::string& path) { delete_edits_.bind(1, to_blob(path)).run(); }

void library_store::forget_edits() {
    const auto lock = database_.lock();
    if (has_edits()) database_.execute("DELETE FROM edits");
}

void library_store::move_entries(const moved_locations& moved) {
    for (const std::string table : {"playlist_entries", "queue_entries"}) {
        const std::string list = table == "queue_entries" ? "0" : "playlist";
        std::vector<std::tuple<std::int64_t, std::int64_t, playable_location>> found;
        auto entries = database_.prepare("SELECT " + list + ", position, path, subsong FROM " + table);
        while (entries.step()) {
            const auto at = moved.find({from_blob(entries.blob(2)), static_cast<std::uint32_t>(entries.integer(3))});
            if (at != moved.end()) found.emplace_back(entries.integer(0), entries.integer(1), at->second);
        }
        auto update =
            database_.prepare("UPDATE " + table + " SET path=?3, subsong=?4 WHERE " + list + "=?1 AND position=?2");
        for (const auto& [id, position, now] : found)
            update.bind(1, id).bind(2, position).bind(3, to_blob(now.path)).bind(4, std::int64_t{now.subsong}).run();
    }
}

}  // namespace ostrevan::library
