#include "player/index/index_store.h"

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <iterator>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include "player/index/index_changes.h"
#include "player/index/index_database.h"
#include "player/index/index_memory.h"
#include "player/index/index_writer.h"
#include "player/index/write_gate.h"

namespace ostrevan::index {

namespace {

bool is_bulk(const index_job& job) {
    const auto* const changes = std::get_if<record_changes>(&job);
    if (changes == nullptr || changes->before.changes().size() < index_store::bulk_size) return false;
    const auto had_record = [&](const change_list::change& each) { return changes->before.data(each).has_value(); };
    return std::ranges::count_if(changes->before.changes(), had_record) >= std::ptrdiff_t{index_store::bulk_size};
}

/// More than can be going on at once.
constexpr std::size_t most_acts = 1024;

}  // namespace

struct index_store::state {
    /// Its first and its last commit so far.
    struct begun_act {
        std::int64_t id = 0, last = 0;
    };

    state(const std::filesystem::path& path, index_error_sink error_sink, options settings);

    bool load(const std::stop_token& stop);
    std::int64_t commit(std::span<std::pair<nuv::guid, change_list>> changes, std::vector<known_track> noted = {},
                        std::optional<change_cause> why = std::nullopt);
    operation_entry next_operation(std::int64_t now, change_cause why);
    void learn_before(std::int64_t index_id, const change_list& list);
    void trim_journal();
    catalog_entry find_or_add(const nuv::guid& index);
    void update(catalog_entry entry);
    void enqueue(std::vector<index_job> jobs);
    void save(std::span<const index_job> jobs);
    void copy_before(std::span<const index_job> jobs);
    [[nodiscard]] write_gate::pass enter_to_write();
    [[nodiscard]] std::string only_read() const;

    std::function<std::int64_t()> clock;
    const bool daily_copies;
    std::atomic<std::uint64_t> successor_changes = 0;
    const std::function<change_cause()> cause;
    const std::chrono::days journal_age;
    const std::int64_t journal_size;
    std::optional<std::int64_t> copied_on;  // day; the writer's thread only
    bool has_copy = false;                  // from before what is being saved; the writer's thread only
    index_error_sink report;
    std::atomic<bool> has_refused = false;  // a refused change, not reported by `flush` yet
    index_database database;                // the writer's thread only, once that runs
    index_reader reader;
    index_memory memory;
    write_gate gate;
    // Used inside the gate.
    std::int64_t last_operation;
    std::map<std::uint64_t, begun_act> acts;  // by `change_cause::act`; those used last
    std::mutex catalog_mutex;                 // the order in memory and in the queue is the same
    std::optional<sqlite::error> damage;      // the writer's thread only
    index_writer writer;
};

index_store::state::state(const std::filesystem::path& path, index_error_sink error_sink, options settings)
    : clock(settings.clock ? std::move(settings.clock) : [] { return static_cast<std::int64_t>(std::time(nullptr)); }),
      daily_copies(settings.daily_copies),
      cause(std::move(settings.cause)),
      journal_age(settings.journal_age),
      journal_size(settings.journal_size),
      report(error_sink ? std::move(error_sink) : [](const std::string&) {}),
      database(path, settings.busy_timeout),
      reader(path, settings.busy_timeout),
      memory(database.catalog()),
      last_operation(database.last_operation()),
      writer({.load = [this](const std::stop_token& stop) { return load(stop); },
              .save = [this](std::span<const index_job> jobs) { save(jobs); },
              .report = report},
             settings.retry_interval) {}

bool index_store::state::load(const std::stop_token& stop) {
    if (damage) throw *damage;
    try {
        const bool complete = database.load([&](std::int64_t index_id, const change_list& rows) {
            memory.add_loaded(index_id, rows);
            return !stop.stop_requested();
        });
        if (!complete) return false;
        memory.finish_loading();
        trim_journal();
        return true;
    } catch (const sqlite::error& error) {
        if ((error.code() & 0xFF) == SQLITE_CORRUPT) damage = error;
        throw;
    }
}

void index_store::state::save(std::span<const index_job> jobs) {
    copy_before(jobs);
    const bool is_kept = database.save(jobs);
    has_copy = false;
    if (!is_kept)
        report("The journal in \"" + database.path() +
               "\" is damaged: changes are saved, but can no longer be looked up or undone. A copy of the folder backup has "
               "an earlier one.");
}

/// A failure is no reason to stop: the next start tries again.
void index_store::state::trim_journal() {
    if (database.is_read_only() || !cause) return;
    try {
        database.trim_journal(clock() - std::chrono::seconds(journal_age).count(), journal_size);
    } catch (const sqlite::error&) {
    }
}

/// A failed backup must not keep changes from being saved. When saving is tried again, the first copy serves.
void index_store::state::copy_before(std::span<const index_job> jobs) {
    constexpr std::int64_t seconds_per_day = 24 * 60 * 60;
    const auto changes_records = [](const index_job& job) { return std::holds_alternative<record_changes>(job); };
    if (!daily_copies || std::ranges::none_of(jobs, changes_records)) return;
    const std::int64_t today = clock() / seconds_per_day;
    try {
        has_copy = has_copy || (std::exchange(copied_on, today) != today && database.back_up_once_a_day());
        if (has_copy || std::ranges::none_of(jobs, is_bulk)) return;
        has_copy = true;
        database.back_up("bulk");
    } catch (const std::exception& error) {
        report(error.what() + std::string(" The changes are saved without it."));
    }
}

std::string index_store::state::only_read() const {
    return "The track index database \"" + database.path() + "\" can only be read";
}

write_gate::pass index_store::state::enter_to_write() {
    if (!database.is_read_only()) return gate.enter();
    has_refused = true;
    throw std::runtime_error(only_read());
}

void index_store::state::enqueue(std::vector<index_job> jobs) {
    if (!database.is_read_only()) writer.enqueue(std::move(jobs));
}

/// The caller is inside the gate.
/// Returns the act.
std::int64_t index_store::state::commit(std::span<std::pair<nuv::guid, change_list>> changes, std::vector<known_track> noted,
                                        std::optional<change_cause> why) {
    if (changes.empty() && noted.empty()) return 0;
    std::vector<index_job> jobs;
    const std::int64_t now = clock();
    std::int64_t operation = 0, act = 0;
    if (cause) {
        auto entry = next_operation(now, why ? std::move(*why) : cause());
        operation = entry.id;
        act = entry.act;
        jobs.emplace_back(std::move(entry));
    }
    for (auto& [guid, list] : changes) {
        const catalog_entry entry = find_or_add(guid);
        learn_before(entry.id, list);
        auto before = memory.apply(entry.id, list);
        jobs.emplace_back(record_changes{entry.id, now, std::move(list), operation, std::move(before)});
    }
    const bool has_noted = !noted.empty();
    if (has_noted) jobs.emplace_back(known_tracks{std::move(noted), operation});
    writer.enqueue(std::move(jobs));
    if (has_noted) ++successor_changes;  // last: whoever sees the new number then reads what was noted
    return act;
}

operation_entry index_store::state::next_operation(std::int64_t now, change_cause why) {
    const auto id = ++last_operation;
    if (why.act == 0) return {id, id, now, why.undoes, std::move(why.text)};
    auto& act = acts.try_emplace(why.act, begun_act{.id = id}).first->second;
    act.last = id;
    const auto first = act.id;
    if (acts.size() > most_acts)
        acts.erase(std::ranges::min_element(acts, {}, [](const auto& each) { return each.second.last; }));
    return {id, first, now, why.undoes, std::move(why.text)};
}

/// What is not loaded yet is looked up: the journal keeps it, and copies are made before many records change.
void index_store::state::learn_before(std::int64_t index_id, const change_list& list) {
    if (memory.is_loaded() || (!cause && !daily_copies)) return;
    change_list rows;
    std::vector<std::byte> record(max_record_size);
    for (const auto& change : list.changes())
        if (const auto size = reader.read(index_id, change.key, record.data(), record.size()); size != 0)
            rows.put(change.key, std::span(record).first(size));
    memory.add_loaded(index_id, rows);
}

catalog_entry index_store::state::find_or_add(const nuv::guid& index) {
    const std::scoped_lock lock(catalog_mutex);
    if (const auto known = memory.find(index)) return *known;
    catalog_entry added = memory.add(index);
    enqueue({added});
    return added;
}

void index_store::state::update(catalog_entry entry) {
    memory.update(entry);
    enqueue({std::move(entry)});
}

index_store::index_store(const std::filesystem::path& path, index_error_sink error_sink, options settings)
    : state_(std::make_unique<state>(path, std::move(error_sink), std::move(settings))) {}

index_store::~index_store() = default;

std::size_t index_store::read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const {
    const auto known = state_->memory.read(index, key, buffer, capacity);
    return known.ask_index == 0 ? known.size : state_->reader.read(known.ask_index, key, buffer, capacity);
}

std::optional<std::vector<std::byte>> index_store::record(const nuv::guid& index, std::uint64_t key) const {
    std::vector<std::byte> bytes(read(index, key, nullptr, 0));
    // It may have changed meanwhile.
    for (auto size = read(index, key, bytes.data(), bytes.size()); size != bytes.size();
         size = read(index, key, bytes.data(), bytes.size()))
        bytes.resize(size);
    return bytes.empty() ? std::nullopt : std::optional(std::move(bytes));
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

store_transaction index_store::begin() { return {*state_, std::nullopt}; }
store_transaction index_store::begin(change_cause why) { return {*state_, std::move(why)}; }

void index_store::write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data) {
    store_transaction transaction = begin();
    transaction.write(index, key, data);
    transaction.commit();
}

void index_store::flush() {
    if (state_->has_refused.exchange(false)) throw std::runtime_error(state_->only_read() + ".");
    state_->writer.flush();
}

std::filesystem::path index_store::back_up(std::string_view reason, const std::filesystem::path& beside) {
    flush();
    return state_->reader.back_up(reason, beside);
}

void index_store::note(listen heard, std::uint64_t by) {
    const auto inside = state_->enter_to_write();
    if (const auto act = state_->acts.find(by); act != state_->acts.end()) heard.act = act->second.id;
    std::vector<index_job> jobs;
    jobs.emplace_back(std::move(heard));
    state_->enqueue(std::move(jobs));
}

void index_store::note(std::vector<known_track> tracks) {
    if (tracks.empty()) return;
    const bool has_successor =
        std::ranges::any_of(tracks, [](const known_track& each) { return each.successor.has_value(); });
    std::vector<index_job> jobs;
    jobs.emplace_back(known_tracks{std::move(tracks)});
    state_->enqueue(std::move(jobs));
    if (has_successor) ++state_->successor_changes;
}

std::uint64_t index_store::successor_changes() const noexcept { return state_->successor_changes; }

journal index_store::read_journal() {
    flush();
    return journal(state_->database.path());
}

bool index_store::is_read_only() const noexcept { return state_->database.is_read_only(); }
std::string index_store::refusal() const {
    return state_->only_read() +
           ", so nothing is counted or changed. Make room on the disk, or the file and its folder writable, and start "
           "again.";
}

bool index_store::pending() const { return state_->writer.pending(); }

void index_store::register_index(const nuv::guid& index, std::uint64_t retention_100ns, std::string_view owner) {
    state_->find_or_add(index);
    const std::scoped_lock lock(state_->catalog_mutex);
    catalog_entry entry = *state_->memory.find(index);
    if (!entry.owner.empty() && entry.owner != owner)
        throw std::runtime_error(
            "The index {" + nuv::guid_text(index) + "} belongs to the component " + entry.owner + ", and " +
            std::string(owner) +
            " may not use it as its own. If this is the same component, give its file the old name again.");
    // Without a job, the end of the program has nothing to wait for.
    if (entry.retention == retention_100ns && entry.owner == owner) return;
    entry.retention = retention_100ns;
    entry.owner = owner;
    state_->update(std::move(entry));
}

void index_store::remove_index(const nuv::guid& index) {
    const std::scoped_lock lock(state_->catalog_mutex);
    auto entry = state_->memory.find(index);
    if (!entry || !entry->retention) return;
    entry->retention.reset();
    state_->update(std::move(*entry));
}

bool index_store::registered(const nuv::guid& index) const {
    const auto entry = state_->memory.find(index);
    return entry && entry->retention;
}

void index_store::touch(const nuv::guid& index, std::span<const std::uint64_t> keys_of_library_tracks, std::int64_t now) {
    const auto entry = state_->memory.find(index);
    if (!entry || keys_of_library_tracks.empty()) return;
    state_->enqueue({seen_keys{entry->id, now, {keys_of_library_tracks.begin(), keys_of_library_tracks.end()}}});
}

std::vector<std::uint64_t> index_store::old_keys(const nuv::guid& index, std::span<const std::uint64_t> kept,
                                                 std::int64_t now) const {
    constexpr std::uint64_t units_per_second = 10'000'000;
    const auto entry = state_->memory.find(index);
    if (!entry || !entry->retention) return {};
    // Rounded up, so that no record is dropped too early.
    const std::uint64_t seconds = *entry->retention / units_per_second + (*entry->retention % units_per_second != 0);
    // The query reads marks from the disk: save everything first.
    state_->writer.wait_loaded();
    state_->writer.flush();
    auto old = state_->reader.seen_before(entry->id, now - static_cast<std::int64_t>(seconds) - seen_slack);
    std::erase_if(old, [&](std::uint64_t key) { return std::ranges::binary_search(kept, key); });
    return old;
}

void index_store::erase(const nuv::guid& index, std::span<const std::uint64_t> keys) {
    write_gate::pass inside = state_->enter_to_write();
    std::vector<std::pair<nuv::guid, change_list>> changes(1);
    changes.front().first = index;
    for (const std::uint64_t key : keys) changes.front().second.erase(key);
    state_->commit(changes);
    inside.leave();
    flush();
}

struct store_transaction::changes {
    changes(index_store::state& into, std::optional<change_cause> because)
        : store(into), why(std::move(because)), inside(into.enter_to_write()) {}

    index_store::state& store;
    std::optional<change_cause> why;
    write_gate::pass inside;
    std::vector<std::pair<nuv::guid, change_list>> lists;  // one for each index, a handful
    std::vector<known_track> noted;
};

store_transaction::store_transaction(index_store::state& store, std::optional<change_cause> why)
    : changes_(std::make_unique<changes>(store, std::move(why))) {}
store_transaction::store_transaction(store_transaction&&) noexcept = default;
store_transaction::~store_transaction() = default;

void store_transaction::write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data) {
    if (!changes_) throw misuse("The index transaction is finished");
    if (data.size() > index_store::max_record_size) throw std::invalid_argument("An index record holds at most 65536 bytes");
    auto list = std::ranges::find(changes_->lists, index, &std::pair<nuv::guid, change_list>::first);
    if (list == changes_->lists.end()) list = changes_->lists.insert(list, {index, change_list()});
    if (!data.empty()) return list->second.put(key, data);
    changes_->store.writer.wait_loaded();  // or loading would bring the record back
    list->second.erase(key);
}

void store_transaction::note(std::vector<known_track> tracks) {
    if (!changes_) throw misuse("The index transaction is finished");
    std::ranges::move(tracks, std::back_inserter(changes_->noted));
}

void store_transaction::set_cause(change_cause why) {
    if (!changes_) throw misuse("The index transaction is finished");
    changes_->why = std::move(why);
}

std::int64_t store_transaction::commit() {
    if (!changes_) throw misuse("The index transaction is finished");
    const auto finished = std::exchange(changes_, nullptr);
    return finished->store.commit(finished->lists, std::move(finished->noted), std::move(finished->why));
}

}  // namespace ostrevan::index
