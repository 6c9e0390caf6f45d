#include "player/library/playlists.h"

#include "player/library/library_store.h"

namespace ostrevan::library {

std::vector<std::string> playlists::names() const {
    const auto lock = database_.lock();
    std::vector<std::string> result;
    auto query = database_.prepare("SELECT name FROM playlists ORDER BY name");
    while (query.step()) result.emplace_back(query.text(0));
    return result;
}

std::optional<std::int64_t> playlists::find(const std::string& name) const {
    auto query = database_.prepare("SELECT id FROM playlists WHERE name=?1");
    query.bind(1, std::string_view(name));
    if (!query.step()) return std::nullopt;
    return query.integer(0);
}

std::optional<std::vector<playable_location>> playlists::entries(const std::string& name) const {
    const auto lock = database_.lock();
    const auto id = find(name);
    if (!id) return std::nullopt;
    std::vector<playable_location> result;
    auto query = database_.prepare("SELECT path, subsong FROM playlist_entries WHERE playlist=?1 ORDER BY position");
    query.bind(1, *id);
    while (query.step()) result.push_back({from_blob(query.blob(0)), static_cast<std::uint32_t>(query.integer(1))});
    return result;
}

bool playlists::create(const std::string& name, std::span<const playable_location> entries) {
    sqlite::transaction writing(database_);
    if (find(name)) return false;
    database_.prepare("INSERT INTO playlists(name) VALUES(?1)").bind(1, std::string_view(name)).run();
    insert(database_.last_insert_id(), entries);
    writing.commit();
    return true;
}

void playlists::insert(std::int64_t id, std::span<const playable_location> entries) {
    auto insert =
        database_.prepare("INSERT INTO playlist_entries(playlist, position, path, subsong) VALUES(?1, ?2, ?3, ?4)");
    std::int64_t position = 0;
    for (const auto& [path, subsong] : entries)
        insert.bind(1, id).bind(2, position++).bind(3, to_blob(path)).bind(4, std::int64_t{subsong}).run();
}

bool playlists::replace(const std::string& name, std::span<const playable_location> entries) {
    sqlite::transaction writing(database_);
    const auto id = find(name);
    if (!id) return false;
    database_.prepare("DELETE FROM playlist_entries WHERE playlist=?1").bind(1, *id).run();
    insert(*id, entries);
    writing.commit();
    return true;
}

bool playlists::change(const std::string& name, const std::function<void(std::vector<playable_location>& entries)>& work) {
    const auto lock = database_.lock();
    auto known = entries(name);
    if (known) work(*known);
    return known && replace(name, *known);
}

bool playlists::rename(const std::string& name, const std::string& new_name) {
    sqlite::transaction writing(database_);
    if (find(new_name)) return false;
    database_.prepare("UPDATE playlists SET name=?2 WHERE name=?1")
        .bind(1, std::string_view(name))
        .bind(2, std::string_view(new_name))
        .run();
    writing.commit();
    return true;
}

bool playlists::remove(const std::string& name) {
    const auto lock = database_.lock();
    database_.prepare("DELETE FROM playlists WHERE name=?1").bind(1, std::string_view(name)).run();
    return database_.changes() != 0;
}

}  // namespace ostrevan::library
