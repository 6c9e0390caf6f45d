#include "player/library/library_store.h"

namespace ostrevan::library {
namespace {

constexpr const char* upgrades[] = {
    "CREATE TABLE edits(path BLOB NOT NULL, subsong INTEGER NOT NULL, info BLOB NOT NULL)",
};

// Files and tracks are only ever appended during a scan: no index on the path has to be kept, since the library knows all
// of them in memory.
constexpr sqlite::format library_format{0x4F4C4942,  // "OLIB"
                                        2,
                                        R"(
CREATE TABLE folders(
    id INTEGER PRIMARY KEY,
    path BLOB NOT NULL UNIQUE);
CREATE TABLE files(
    id INTEGER PRIMARY KEY,
    folder INTEGER NOT NULL REFERENCES folders(id) ON DELETE CASCADE,
    path BLOB NOT NULL,
    size INTEGER NOT NULL,
    mtime INTEGER NOT NULL);
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
    info BLOB NOT NULL);
)",
                                        "library", upgrades};

std::int64_t as_integer(std::size_t number) noexcept { return static_cast<std::int64_t>(number); }

}  // namespace

library_store::library_store(std::string path)
    : database_(std::move(path), library_format),
      insert_file_(database_.prepare("INSERT INTO files(folder, path, size, mtime) VALUES(?1, ?2, ?3, ?4)")),
      update_file_(database_.prepare("UPDATE files SET folder=?1, path=?2, size=?3, mtime=?4 WHERE id=?5")),
      delete_file_(database_.prepare("DELETE FROM files WHERE id=?1")),
      insert_track_(database_.prepare("INSERT OR REPLACE INTO tracks(file, subsong, info) VALUES(?1, ?2, ?3)")),
      delete_tracks_(database_.prepare("DELETE FROM tracks WHERE file=?1")),
      insert_edit_(database_.prepare(
          "INSERT INTO edits(path, subsong, info) SELECT path, subsong, info FROM tracks JOIN files ON id=file "
          "WHERE file=?1 AND subsong=?2 AND info<>?3")),
      insert_source_(database_.prepare("INSERT INTO sources(file, position, path, size, mtime) VALUES(?1, ?2, ?3, ?4, ?5)")),
      delete_sources_(database_.prepare("DELETE FROM sources WHERE file=?1")) {}

std::vector<library_folder> library_store::folders() const {
    std::vector<library_folder> result;
    auto query = database_.prepare("SELECT id, path FROM folders ORDER BY id");
    while (query.step()) result.push_back({query.integer(0), from_blob(query.blob(1))});
    return result;
}

library_folder library_store::add_folder(const std::string& path) {
    database_.prepare("INSERT INTO folders(path) VALUES(?1)").bind(1, to_blob(path)).run();
    return {database_.last_insert_id(), path};
}

void library_store::remove_folder(std::int64_t id) {
    database_.prepare("DELETE FROM folders WHERE id=?1").bind(1, id).run();
}

void library_store::load(const std::function<void(stored_file&&, std::vector<stored_track>&&)>& on_file) const {
    // Three tables in the order of the file ids, read side by side.
    auto files = database_.prepare("SELECT id, folder, path, size, mtime FROM files ORDER BY id");
    auto tracks = database_.prepare("SELECT file, subsong, info FROM tracks ORDER BY file, subsong");
    auto sources = database_.prepare("SELECT file, path, size, mtime FROM sources ORDER BY file, position");
    bool has_track = tracks.step();
    bool has_source = sources.step();
    while (files.step()) {
        stored_file file{
            files.integer(0), files.integer(1), from_blob(files.blob(2)), {files.integer(3), files.integer(4)}, {}};
        std::vector<stored_track> of_file;
        for (; has_track && tracks.integer(0) <= file.id; has_track = tracks.step())
            of_file.push_back({static_cast<std::uint32_t>(tracks.integer(1)), from_blob(tracks.blob(2))});
        for (; has_source && sources.integer(0) <= file.id; has_source = sources.step())
            file.sources.push_back({from_blob(sources.blob(1)), {sources.integer(2), sources.integer(3)}});
        on_file(std::move(file), std::move(of_file));
    }
}

std::int64_t library_store::put_file(const stored_file& file, std::span<const stored_track> tracks) {
    auto& put = file.id == 0 ? insert_file_ : update_file_;
    put.bind(1, file.folder).bind(2, to_blob(file.path)).bind(3, file.stamp.size).bind(4, file.stamp.mtime);
    if (file.id != 0) {
        for (const auto& track : tracks)
            insert_edit_.bind(1, file.id).bind(2, std::int64_t{track.subsong}).bind(3, to_blob(track.encoded)).run();
        put.bind(5, file.id);
        clear_file(file.id);
    }
    put.run();

    const std::int64_t id = file.id != 0 ? file.id : database_.last_insert_id();
    for (const auto& track : tracks)
        insert_track_.bind(1, id).bind(2, std::int64_t{track.subsong}).bind(3, to_blob(track.encoded)).run();
    for (std::size_t i = 0; i < file.sources.size(); ++i) {
        const auto& [path, stamp] = file.sources[i];
        insert_source_.bind(1, id)
            .bind(2, as_integer(i))
            .bind(3, to_blob(path))
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

std::vector<stored_edit> library_store::edits() const {
    std::vector<stored_edit> result;
    auto query = database_.prepare("SELECT path, subsong, info FROM edits ORDER BY rowid");
    while (query.step())
        result.push_back(
            {from_blob(query.blob(0)), {static_cast<std::uint32_t>(query.integer(1)), from_blob(query.blob(2))}});
    return result;
}

void library_store::forget_edits() {
    if (database_.query_integer("SELECT EXISTS(SELECT 1 FROM edits)") != 0) database_.execute("DELETE FROM edits");
}

}  // namespace ostrevan::library
