#include "player/index/index_store.h"

#include <sqlite3.h>

#include <ctime>
#include <optional>
#include <stdexcept>
#include <utility>

#include "player/index/index_changes.h"
#include "player/index/index_database.h"
#include "player/index/index_memory.h"
#include "player/index/index_writer.h"
#include "player/index/write_gate.h"

namespace ostrevan {

using namespace indexing;

struct index_store::state {
    state(const std::filesystem::path& path, index_error_sink error_sink, options settings);

    bool load(const std::stop_token& stop);
    void commit(std::span<std::pair<nuv::guid, change_list>> changes);
    catalog_entry find_or_add(const nuv::guid& index);
    void set_retention(const nuv::guid& index, std::optional<std::uint64_t> retention);

    std::function<std::int64_t()> clock;
    index_database database;  // the writer's thread only, once that runs
    index_reader reader;
    index_memory memory;
    write_gate gate;
    std::mutex catalog_mutex;             // keeps memory and queue in the same order
    std::optional<sqlite::error> damage;  // the writer's thread only
    index_writer writer;
};

index_store::state::state(const std::filesystem::path& path, index_error_sink error_sink, options settings)
    : clock(settings.clock ? std::move(settings.clock) : [] { return static_cast<std::int64_t>(std::time(nullptr)); }),
      database(path, settings.busy_timeout),
      reader(path, settings.busy_timeout),
      memory(database.catalog()),
      writer({.load = [this](const std::stop_token& stop) { return load(stop); },
              .save = [this](std::span<const index_job> jobs) { database.save(jobs); },
              .report = error_sink ? std::move(error_sink) : [](const std::string&) {}},
             settings.retry_interval) {}

bool index_store::state::load(const std::stop_token& stop) {
    if (damage) throw *damage;
    try {
        const bool complete = database.load([&](std::int64_t index_id, const change_list& rows) {
            memory.add_loaded(index_id, rows);
            return !stop.stop_requested();
        });
        if (complete) memory.finish_loading();
        return complete;
    } catch (const sqlite::error& error) {
        if ((error.code() & 0xFF) == SQLITE_CORRUPT) damage = error;
        throw;
    }
}

/// The caller is inside the gate.
void index_store::state::commit(std::span<std::pair<nuv::guid, change_list>> changes) {
    std::vector<index_job> jobs;
    const std::int64_t now = clock();
    for (auto& [guid, list] : changes) {
        const catalog_entry entry = find_or_add(guid);
        memory.apply(entry.id, list);
        jobs.emplace_back(record_changes{entry.id, now, std::move(list)});
    }
    if (!jobs.empty()) writer.enqueue(std::move(jobs));
}

catalog_entry index_store::state::find_or_add(const nuv::guid& index) {
    const std::scoped_lock lock(catalog_mutex);
    if (const auto known = memory.find(index)) return *known;
    const catalog_entry added = memory.add(index);
    writer.enqueue({added});
    return added;
}

void index_store::state::set_retention(const nuv::guid& index, std::optional<std::uint64_t> retention) {
    find_or_add(index);
    const std::scoped_lock lock(catalog_mutex);
    catalog_entry entry = *memory.find(index);
    if (entry.retention == retention) return;  // nothing to save, so nothing that the end of the program waits for
    memory.set_retention(entry.id, retention);
    entry.retention = retention;
    writer.enqueue({entry});
}

index_store::index_store(const std::filesystem::path& path, index_error_sink error_sink, options settings)
    : state_(std::make_unique<state>(path, std::move(error_sink), std::move(settings))) {}

index_store::~index_store() = default;

std::size_t index_store::read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const {
    const auto known = state_->memory.read(index, key, buffer, capacity);
    return known.ask_index == 0 ? known.size : state_->reader.read(known.ask_index, key, buffer, capacity);
}

std::vector<std::uint64_t> index_store::keys(const nuv::guid& index) const {
    state_->writer.wait_loaded();
    return state_->memory.keys(index);
}

std::vector<std::uint64_t> index_store::keys_from(const nuv::guid& index, std::uint64_t first, std::size_t at_most) const {
    state_->writer.wait_loaded();
    return state_->memory.keys_from(index, first, at_most);
}

std::vector<nuv::guid> index_store::indexes() const {
    std::vector<nuv::guid> guids;
    for (const catalog_entry& entry : state_->memory.catalog()) guids.push_back(entry.guid);
    return guids;
}

store_transaction index_store::begin() { return store_transaction(*state_); }

void index_store::write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data) {
    store_transaction transaction = begin();
    transaction.write(index, key, data);
    transaction.commit();
}

void index_store::flush() { state_->writer.flush(); }

std::filesystem::path index_store::back_up(std::string_view reason, const std::filesystem::path& beside) {
    flush();
    return state_->reader.back_up(reason, beside);
}

bool index_store::pending() const { return state_->writer.pending(); }

void index_store::register_index(const nuv::guid& index, std::uint64_t retention_100ns) {
    state_->set_retention(index, retention_100ns);
}

void index_store::remove_index(const nuv::guid& index) {
    if (registered(index)) state_->set_retention(index, std::nullopt);
}

bool index_store::registered(const nuv::guid& index) const {
    const auto entry = state_->memory.find(index);
    return entry && entry->retention;
}

void index_store::touch(const nuv::guid& index, std::span<const std::uint64_t> keys_of_library_tracks, std::int64_t now) {
    const auto entry = state_->memory.find(index);
    if (!entry || keys_of_library_tracks.empty()) return;
    state_->writer.enqueue({seen_keys{entry->id, now, {keys_of_library_tracks.begin(), keys_of_library_tracks.end()}}});
}

/// What is dropped is chosen on disk, where the marks are: everything has to be there first, and nobody may write until the
/// choice has been made into an ordinary change.
std::size_t index_store::purge(const nuv::guid& index, std::int64_t now) {
    constexpr std::uint64_t units_per_second = 10'000'000;
    const auto entry = state_->memory.find(index);
    if (!entry || !entry->retention) return 0;
    // Rounded up: a record is never dropped early.
    const std::uint64_t seconds = *entry->retention / units_per_second + (*entry->retention % units_per_second != 0);

    write_gate::pass inside = state_->gate.enter();
    state_->writer.wait_loaded();
    flush();
    std::vector<std::pair<nuv::guid, change_list>> changes(1);
    changes.front().first = index;
    change_list& erased = changes.front().second;
    for (const std::uint64_t key : state_->reader.seen_before(entry->id, now - static_cast<std::int64_t>(seconds)))
        erased.erase(key);
    const std::size_t count = erased.changes().size();
    if (count == 0) return 0;
    state_->commit(changes);
    inside.leave();
    flush();
    return count;
}

struct store_transaction::changes {
    explicit changes(index_store::state& into) : store(into), inside(into.gate.enter()) {}

    index_store::state& store;
    write_gate::pass inside;
    std::vector<std::pair<nuv::guid, change_list>> lists;  // one for each index, a handful
};

store_transaction::store_transaction(index_store::state& store) : changes_(std::make_unique<changes>(store)) {}
store_transaction::store_transaction(store_transaction&&) noexcept = default;
store_transaction::~store_transaction() = default;

void store_transaction::write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data) {
    if (!changes_) throw std::logic_error("The index transaction is finished");
    if (data.size() > index_store::max_record_size) throw std::invalid_argument("An index record holds at most 65536 bytes");
    for (auto& [guid, list] : changes_->lists)
        if (guid == index) return list.put(key, data);
    changes_->lists.emplace_back(index, change_list()).second.put(key, data);
}

void store_transaction::commit() {
    if (!changes_) throw std::logic_error("The index transaction is finished");
    const auto finished = std::exchange(changes_, nullptr);
    finished->store.commit(finished->lists);
}

}  // namespace ostrevan
