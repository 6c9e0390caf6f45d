#include "player/library/queue_store.h"

#include <cstring>

#include "player/library/library_store.h"

namespace ostrevan::library {

std::optional<saved_queue> queue_store::load() const {
    const auto lock = database_.lock();
    saved_queue result;
    auto state = database_.prepare("SELECT place, seconds, repeat, shuffle, volume, round FROM queue");
    if (!state.step()) return std::nullopt;
    result.state = {static_cast<std::size_t>(state.integer(0)), state.real(1), static_cast<int>(state.integer(2)),
                    static_cast<int>(state.integer(3)), state.real(4)};
    const auto round = state.blob(5);
    result.round.resize(round.size() / sizeof(std::uint32_t));
    if (!result.round.empty())  // no pointer may be null
        std::memcpy(result.round.data(), round.data(), result.round.size() * sizeof(std::uint32_t));
    result.entries = entries();
    if (result.entries.empty()) return std::nullopt;
    return result;
}

std::vector<playable_location> queue_store::entries() const {
    std::vector<playable_location> result;
    auto rows = database_.prepare("SELECT path, subsong FROM queue_entries ORDER BY position");
    while (rows.step()) result.push_back({from_blob(rows.blob(0)), static_cast<std::uint32_t>(rows.integer(1))});
    return result;
}

void queue_store::save(std::span<const listed_entry> list, std::span<const std::uint32_t> round, const queue_state& state) {
    sqlite::transaction saving(database_);
    const auto before = entries();
    clear();
    database_.execute("INSERT INTO queue(id) VALUES(1)");
    auto insert = database_.prepare("INSERT INTO queue_entries(position, path, subsong) VALUES(?1, ?2, ?3)");
    std::int64_t position = 0;
    for (const auto& each : list) {
        const bool is_known = each.position_before && *each.position_before < before.size();
        const auto& [path, subsong] = is_known ? before[*each.position_before] : each.location;
        insert.bind(1, position++).bind(2, to_blob(path)).bind(3, std::int64_t{subsong}).run();
    }
    save(round);
    save(state);
    saving.commit();
}

void queue_store::clear() {
    const auto lock = database_.lock();
    database_.execute("DELETE FROM queue; DELETE FROM queue_entries");
}

void queue_store::save(std::span<const std::uint32_t> round) {
    const auto lock = database_.lock();
    database_.prepare("UPDATE queue SET round=?1").bind(1, std::as_bytes(round)).run();
}

void queue_store::save(const queue_state& state) {
    const auto lock = database_.lock();
    database_.prepare("UPDATE queue SET place=?1, seconds=?2, repeat=?3, shuffle=?4, volume=?5")
        .bind(1, static_cast<std::int64_t>(state.place))
        .bind(2, state.seconds)
        .bind(3, std::int64_t{state.repeat})
        .bind(4, std::int64_t{state.shuffle})
        .bind(5, state.volume)
        .run();
}

}  // namespace ostrevan::library
