#include "player/index/journal.h"

#include <sqlite3.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <utility>

#include "player/index/index_database.h"

namespace ostrevan::index {
namespace {

/// A later change of the same record is added to what the first one was made from.
void add(std::map<std::uint64_t, record_change>& to, std::vector<record_change>&& changes) {
    for (auto& each : changes) {
        const auto [known, is_new] = to.try_emplace(each.key, each);
        if (!is_new) known->second.after = std::move(each.after);
    }
}

const std::string known_columns = "SELECT key, artist, album, title, path, subsong, successor FROM known_tracks";

known_track known_in(const sqlite::statement& row, const nuv::guid& index) {
    known_track known{.index = index, .key = std::bit_cast<std::uint64_t>(row.integer(0))};
    known.artist = row.text(1);
    known.album = row.text(2);
    known.title = row.text(3);
    known.path = row.text(4);
    known.subsong = static_cast<std::uint32_t>(row.integer(5));
    if (!row.is_null(6)) known.successor = std::bit_cast<std::uint64_t>(row.integer(6));
    return known;
}

std::optional<std::uint64_t> successor_of(const std::optional<std::vector<std::byte>>& bytes) {
    std::uint64_t successor = 0;
    if (!bytes || bytes->size() != sizeof successor) return std::nullopt;
    std::memcpy(&successor, bytes->data(), sizeof successor);
    return successor;
}

}  // namespace

journal::journal(const std::filesystem::path& database) : database_(database.string(), index_format()) {
    database_.execute("PRAGMA query_only = ON");
}

const std::map<std::int64_t, std::int64_t>& journal::taken_back() {
    if (taken_back_) return *taken_back_;
    auto& by = taken_back_.emplace();
    auto undoing =
        database_.prepare("SELECT act, undoes FROM operations WHERE undoes IS NOT NULL AND act = id ORDER BY act DESC");
    while (undoing.step())
        if (!by.contains(undoing.integer(0))) by.try_emplace(undoing.integer(1), undoing.integer(0));
    return by;
}

std::vector<act> journal::acts(const char* condition, std::int64_t value, std::size_t at_most) {
    const auto& undone_by = taken_back();
    std::vector<act> found;
    auto rows = database_.prepare(std::string("SELECT act, time, cause, undoes FROM operations WHERE act = id AND ") +
                                  condition + " ORDER BY act DESC LIMIT ?");
    rows.bind(1, value).bind(2, static_cast<std::int64_t>(at_most));
    while (rows.step()) {
        auto& next = found.emplace_back();
        next.id = rows.integer(0);
        next.time = rows.integer(1);
        next.cause = rows.text(2);
        if (!rows.is_null(3)) next.undoes = rows.integer(3);
        if (const auto undo = undone_by.find(next.id); undo != undone_by.end()) next.undone_by = undo->second;
    }
    return found;
}

std::vector<act> journal::latest(std::size_t at_most) { return acts("act > ?", 0, at_most); }

std::optional<act> journal::find(std::int64_t id) {
    auto found = acts("act = ?", id, 1);
    return found.empty() ? std::nullopt : std::optional(std::move(found.front()));
}

std::vector<record_change> journal::parsed(std::span<const std::byte> bytes) const {
    auto changes = read_changes(bytes);
    if (!changes) database_.fail(SQLITE_CORRUPT);
    return std::move(*changes);
}

std::vector<index_changes> journal::changes_of(std::int64_t act_id) {
    std::map<std::int64_t, std::map<std::uint64_t, record_change>> by_index;
    auto operations = database_.prepare("SELECT id FROM operations WHERE act = ? ORDER BY id");
    operations.bind(1, act_id);
    while (operations.step())
        for (const char* sql : {"SELECT index_id, change FROM changes WHERE operation = ? AND index_id > 0",
                                "SELECT index_id, changes FROM bulk_changes WHERE operation = ?"}) {
            auto rows = database_.prepare(sql);
            rows.bind(1, operations.integer(0));
            while (rows.step()) add(by_index[rows.integer(0)], parsed(rows.blob(1)));
        }

    std::vector<index_changes> all;
    for (auto& [index_id, records] : by_index) {
        auto& of_index = all.emplace_back(index_changes{guid_of(index_id), {}});
        for (auto& [key, change] : records)
            if (change.before != change.after) of_index.records.push_back(std::move(change));
    }
    return all;
}

nuv::guid journal::guid_of(std::int64_t index_id) {
    auto guid = database_.prepare("SELECT guid FROM indexes WHERE id = ?");
    guid.bind(1, index_id);
    const auto index = guid.step() ? nuv::parse_guid(guid.text(0)) : std::nullopt;
    if (!index) database_.fail(SQLITE_CORRUPT);
    return *index;
}

std::vector<change_of_record> journal::changes_of(const nuv::guid& index, std::uint64_t key) {
    const auto guid = nuv::guid_text(index);
    std::vector<change_of_record> all;
    auto rows = database_.prepare(
        "SELECT operations.act, single.operation, single.change FROM ("
        "SELECT operation, change, index_id FROM changes WHERE key = ?1 UNION ALL "
        "SELECT operation, changes, index_id FROM bulk_changes WHERE first_key <= ?1 AND last_key >= ?1) AS single "
        "JOIN operations ON operations.id = single.operation JOIN indexes ON indexes.id = single.index_id "
        "WHERE indexes.guid = ?2 ORDER BY single.operation DESC");
    rows.bind(1, std::bit_cast<std::int64_t>(key)).bind(2, std::string_view(guid));
    while (rows.step())
        for (auto& each : parsed(rows.blob(2)))
            if (each.key == key)
                if (auto by = find(rows.integer(0))) all.push_back({std::move(*by), std::move(each)});
    return all;
}

std::vector<known_track> journal::known_tracks(const nuv::guid& index) {
    const auto guid = nuv::guid_text(index);
    std::vector<known_track> all;
    auto rows = database_.prepare(known_columns + " JOIN indexes ON indexes.id = index_id WHERE guid = ? ORDER BY key");
    rows.bind(1, std::string_view(guid));
    while (rows.step()) all.push_back(known_in(rows, index));
    return all;
}

successors journal::successors_in(const nuv::guid& index) {
    const auto guid = nuv::guid_text(index);
    successors all;
    auto rows = database_.prepare(
        "SELECT key, successor FROM known_tracks JOIN indexes ON indexes.id = index_id "
        "WHERE guid = ? AND successor IS NOT NULL");
    rows.bind(1, std::string_view(guid));
    while (rows.step())
        all.add(std::bit_cast<std::uint64_t>(rows.integer(0)), std::bit_cast<std::uint64_t>(rows.integer(1)));
    return all;
}

std::vector<successor_change> journal::successor_changes_of(std::int64_t act_id) {
    std::map<std::pair<std::int64_t, std::uint64_t>, record_change> by_key;
    auto rows = database_.prepare(
        "SELECT -index_id, change FROM changes JOIN operations ON id = operation WHERE act = ? AND index_id < 0 "
        "ORDER BY operation");
    rows.bind(1, act_id);
    while (rows.step())
        for (auto& each : parsed(rows.blob(1))) {
            const auto [known, is_new] = by_key.try_emplace({rows.integer(0), each.key}, each);
            if (!is_new) known->second.after = std::move(each.after);
        }

    std::vector<successor_change> all;
    auto known = database_.prepare(known_columns + " WHERE index_id = ? AND key = ?");
    for (const auto& [place, change] : by_key) {
        known.bind(1, place.first).bind(2, std::bit_cast<std::int64_t>(change.key));
        if (!known.step()) continue;
        all.push_back({known_in(known, guid_of(place.first)), successor_of(change.before), successor_of(change.after)});
        known.reset();
    }
    return all;
}

std::vector<listen> journal::listens_of(const nuv::guid& index, std::uint64_t key) {
    const auto guid = nuv::guid_text(index);
    std::vector<listen> all;
    auto rows = database_.prepare(
        "SELECT listens.id, time, path, subsong, seconds, player, counted, act FROM listen_keys JOIN listens ON listens.id "
        "= listen "
        "JOIN indexes ON indexes.id = index_id WHERE key = ? AND guid = ? ORDER BY listen DESC");
    rows.bind(1, std::bit_cast<std::int64_t>(key)).bind(2, std::string_view(guid));
    while (rows.step()) {
        auto& next = all.emplace_back();
        next.id = rows.integer(0);
        next.time = rows.integer(1);
        next.path = rows.text(2);
        next.subsong = static_cast<std::uint32_t>(rows.integer(3));
        next.seconds = rows.real(4);
        next.player = rows.text(5);
        next.is_counted = rows.integer(6) != 0;
        next.act = rows.integer(7);
    }
    return all;
}

/// Looking up the keys of each listen would take several times as long as reading all of them and sorting.
void journal::for_each_listen(const nuv::guid& index, const std::function<void(const brief_listen&)>& visit) {
    const auto guid = nuv::guid_text(index);
    std::vector<std::pair<std::int64_t, std::int64_t>> keys;  // by listen
    auto key_rows =
        database_.prepare("SELECT listen, key FROM listen_keys WHERE index_id = (SELECT id FROM indexes WHERE guid = ?)");
    key_rows.bind(1, std::string_view(guid));
    while (key_rows.step()) keys.emplace_back(key_rows.integer(0), key_rows.integer(1));
    std::ranges::sort(keys);

    const auto& undone = taken_back();
    auto key = keys.begin();
    auto rows = database_.prepare("SELECT id, time, path, subsong, counted, act FROM listens ORDER BY id");
    while (rows.step()) {
        const auto id = rows.integer(0);
        if (const auto act = rows.integer(5); act < 0 || undone.contains(act)) continue;
        brief_listen next{.time = rows.integer(1),
                          .path = rows.text(2),
                          .subsong = static_cast<std::uint32_t>(rows.integer(3)),
                          .is_counted = rows.integer(4) != 0};
        while (key != keys.end() && key->first < id) ++key;
        if (key != keys.end() && key->first == id) next.key = std::bit_cast<std::uint64_t>(key->second);
        visit(next);
    }
}

}  // namespace ostrevan::index
