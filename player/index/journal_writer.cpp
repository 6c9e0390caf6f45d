#include "player/index/journal_writer.h"

#include <algorithm>
#include <bit>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "player/index/record_change.h"

namespace ostrevan::index {
namespace {

/// A record that one commit has changed: the first and the last of its changes.
struct changed_record {
    std::int64_t key;  // as in the database
    std::uint32_t first;
    std::uint32_t last;
};

/// By key.
std::vector<changed_record> changed_records(const record_changes& of) {
    std::vector<changed_record> records;
    records.reserve(of.list.changes().size());
    std::uint32_t position = 0;
    for (const auto& change : of.list.changes()) {
        records.push_back({std::bit_cast<std::int64_t>(change.key), position, position});
        ++position;
    }
    std::ranges::sort(records, {}, [](const changed_record& each) { return std::pair(each.key, each.first); });
    std::size_t kept = 0;
    for (const auto& each : records) {
        if (kept != 0 && records[kept - 1].key == each.key) records[kept - 1].last = each.last;
        else records[kept++] = each;
    }
    records.resize(kept);
    return records;
}

bool same(std::optional<std::span<const std::byte>> one, std::optional<std::span<const std::byte>> other) {
    return one.has_value() == other.has_value() && (!one || std::ranges::equal(*one, *other));
}

std::optional<std::span<const std::byte>> bytes_of(const std::optional<std::uint64_t>& successor) {
    return successor ? std::optional(std::as_bytes(std::span(&*successor, 1))) : std::nullopt;
}

/// Appends nothing for a record that is as it was.
void append(std::vector<std::byte>& to, const record_changes& changes, const changed_record& record) {
    const auto before = changes.before.data(changes.before.changes()[record.first]);
    const auto after = changes.list.data(changes.list.changes()[record.last]);
    if (!same(before, after)) append_change(to, std::bit_cast<std::uint64_t>(record.key), before, after);
}

}  // namespace

journal_writer::journal_writer(sqlite::database& database)
    : database_(database),
      put_operation_(database.prepare("INSERT INTO operations (id, act, time, undoes, cause) VALUES (?, ?, ?, ?, ?)")),
      put_change_(database.prepare("INSERT INTO changes (index_id, key, operation, change) VALUES (?, ?, ?, ?)")),
      put_bulk_(database.prepare(
          "INSERT INTO bulk_changes (operation, index_id, first_key, last_key, changes) VALUES (?, ?, ?, ?, ?)")) {}

void journal_writer::save(const operation_entry& entry) {
    put_operation_.bind(1, entry.id).bind(2, entry.act).bind(3, entry.time);
    if (entry.undoes != 0) put_operation_.bind(4, entry.undoes);
    else put_operation_.bind_null(4);
    put_operation_.bind(5, std::string_view(entry.cause)).run();
}

void journal_writer::save(const record_changes& changes) {
    constexpr std::size_t records_of_row = 4096;
    const auto records = changed_records(changes);
    std::vector<std::byte> bytes;
    if (records.size() <= most_single_changes) {
        for (const auto& each : records) {
            bytes.clear();
            append(bytes, changes, each);
            if (!bytes.empty()) save_single(changes.index_id, each.key, changes.operation, bytes);
        }
        return;
    }
    for (std::span<const changed_record> left = records; !left.empty();) {
        const auto block = left.first(std::min(records_of_row, left.size()));
        left = left.subspan(block.size());
        bytes.clear();
        for (const auto& each : block) append(bytes, changes, each);
        if (bytes.empty()) continue;
        put_bulk_.bind(1, changes.operation).bind(2, changes.index_id);
        put_bulk_.bind(3, block.front().key).bind(4, block.back().key).bind(5, std::span<const std::byte>(bytes)).run();
    }
}

void journal_writer::save_single(std::int64_t index_id, std::int64_t key, std::int64_t operation,
                                 std::span<const std::byte> change) {
    put_change_.bind(1, index_id).bind(2, key).bind(3, operation).bind(4, change).run();
}

void journal_writer::save(const listen& heard) {
    auto put = database_.prepare(
        "INSERT INTO listens (time, path, subsong, seconds, player, counted, act) VALUES (?, ?, ?, ?, ?, ?, ?)");
    put.bind(1, heard.time).bind(2, std::string_view(heard.path)).bind(3, std::int64_t{heard.subsong});
    put.bind(4, heard.seconds)
        .bind(5, std::string_view(heard.player))
        .bind(6, std::int64_t{heard.is_counted})
        .bind(7, heard.act)
        .run();
    const auto id = database_.last_insert_id();
    auto put_key = database_.prepare(
        "INSERT OR IGNORE INTO listen_keys (index_id, key, listen) SELECT id, ?, ? FROM indexes WHERE guid = ?");
    for (const auto& each : heard.keys) {
        const auto guid = nuv::guid_text(each.index);
        put_key.bind(1, std::bit_cast<std::int64_t>(each.key)).bind(2, id).bind(3, std::string_view(guid)).run();
    }
}

void journal_writer::save(const known_tracks& noted) {
    std::map<std::pair<nuv::guid, std::uint64_t>, const known_track*> last;  // of each key
    for (const auto& each : noted.tracks) last[{each.index, each.key}] = &each;
    // Rows that would stay as they are cost no write.
    auto put = database_.prepare(
        "INSERT INTO known_tracks SELECT id, ?2, ?3, ?4, ?5, ?6, ?7, ?8 FROM indexes WHERE guid = ?1 "
        "ON CONFLICT (index_id, key) DO UPDATE SET artist = excluded.artist, album = excluded.album, "
        "title = excluded.title, path = excluded.path, subsong = excluded.subsong, successor = excluded.successor "
        "WHERE (artist, album, title, path, subsong) IS NOT "
        "(excluded.artist, excluded.album, excluded.title, excluded.path, excluded.subsong) "
        "OR successor IS NOT excluded.successor");
    for (const auto& [place, track] : last) {
        if (noted.operation != 0) save_successor_change(*track, noted.operation);
        const auto guid = nuv::guid_text(track->index);
        put.bind(1, std::string_view(guid)).bind(2, std::bit_cast<std::int64_t>(track->key));
        put.bind(3, std::string_view(track->artist)).bind(4, std::string_view(track->album));
        put.bind(5, std::string_view(track->title)).bind(6, std::string_view(track->path));
        put.bind(7, std::int64_t{track->subsong});
        if (track->successor) put.bind(8, std::bit_cast<std::int64_t>(*track->successor));
        else put.bind_null(8);
        put.run();
    }
}

void journal_writer::save_successor_change(const known_track& now, std::int64_t operation) {
    auto former = database_.prepare(
        "SELECT id, successor FROM indexes LEFT JOIN known_tracks ON index_id = id AND key = ? WHERE guid = ?");
    const auto guid = nuv::guid_text(now.index);
    const auto key = std::bit_cast<std::int64_t>(now.key);
    former.bind(1, key).bind(2, std::string_view(guid));
    if (!former.step()) return;
    const auto index_id = former.integer(0);
    const auto before = former.is_null(1) ? std::nullopt : std::optional(std::bit_cast<std::uint64_t>(former.integer(1)));
    former.reset();
    if (before == now.successor) return;
    std::vector<std::byte> change;
    append_change(change, now.key, bytes_of(before), bytes_of(now.successor));
    save_single(successors_of(index_id), key, operation, change);
}

/// A play that was taken back stays so when the act that took it back is forgotten.
void journal_writer::forget_plays_taken_back(std::int64_t oldest_kept) {
    std::set<std::int64_t> taken_back;
    auto undoing =
        database_.prepare("SELECT act, undoes FROM operations WHERE undoes IS NOT NULL AND act = id ORDER BY act DESC");
    auto mark = database_.prepare("UPDATE listens SET act = -1 WHERE act = ?");
    while (undoing.step()) {
        const auto act = undoing.integer(0), undone = undoing.integer(1);
        if (taken_back.contains(act)) continue;  // redone
        taken_back.insert(undone);
        if (act < oldest_kept) mark.bind(1, undone).run();
    }
}

void journal_writer::trim(std::int64_t time, std::int64_t bytes) {
    // By the sequence of acts: a clock that was wrong for a while makes no younger act old.
    auto young =
        database_.prepare("SELECT coalesce(min(act), (SELECT max(act) FROM operations)) FROM operations WHERE time >= ?");
    young.bind(1, time);
    if (!young.step() || young.is_null(0)) return;
    auto oldest_kept = young.integer(0);
    young.reset();
    auto acts = database_.prepare(
        "SELECT act, sum((SELECT coalesce(sum(length(change)), 0) FROM changes WHERE operation = id) + "
        "(SELECT coalesce(sum(length(changes)), 0) FROM bulk_changes WHERE operation = id)) "
        "FROM operations WHERE act >= ? GROUP BY act ORDER BY act DESC");
    acts.bind(1, oldest_kept);
    auto last_fitting = oldest_kept;
    std::int64_t total = 0;
    for (bool is_newest = true; acts.step(); is_newest = false) {
        total += acts.integer(1);
        if (!is_newest && total > bytes) break;
        last_fitting = acts.integer(0);
    }
    acts.reset();
    oldest_kept = last_fitting;
    forget_plays_taken_back(oldest_kept);
    for (const char* sql : {"DELETE FROM changes WHERE operation IN (SELECT id FROM operations WHERE act < ?)",
                            "DELETE FROM bulk_changes WHERE operation IN (SELECT id FROM operations WHERE act < ?)",
                            "DELETE FROM operations WHERE act < ?"})
        database_.prepare(sql).bind(1, oldest_kept).run();
}

}  // namespace ostrevan::index
