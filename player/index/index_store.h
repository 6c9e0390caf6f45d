#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "nuv/guid.h"
#include "player/index/journal.h"

namespace ostrevan::index {

class store_transaction;

/// Why records change, for the journal.
struct change_cause {
    std::string text{};       ///< for the user, such as "rate 5"
    std::uint64_t act = 0;    ///< commits with the same number in this run are one act; 0: each is one
    std::int64_t undoes = 0;  ///< the act that this one takes back; 0 for none
};

/// Receives failures outside any call, as text for the user. Called on the store's thread, at the end on the destroying
/// one. It must not throw, block or call the store.
using index_error_sink = std::function<void(const std::string& text)>;

/// Small persistent records, found by index (a GUID) and 64-bit key. Reads are served from memory, also while the database
/// is being loaded; changes are visible at once and saved in the background. [any-thread]
class index_store {
public:
    static constexpr std::size_t max_record_size = 64 * 1024;
    /// A commit that changes so many records, not counting new ones, is a bulk operation.
    static constexpr std::size_t bulk_size = 1000;

    struct options {
        std::chrono::milliseconds retry_interval{1000};  // between attempts to save
        std::chrono::milliseconds busy_timeout{2000};    // while another program uses the database
        std::function<std::int64_t()> clock{};           // seconds since 1970; the system's when empty
        bool daily_copies = false;  // a backup before the first change of a day, and before each bulk operation
        /// Called for each commit on the committing thread. Nothing is kept in the journal without it.
        std::function<change_cause()> cause{};
        std::chrono::days journal_age{730};             // older acts are forgotten, but for the newest
        std::int64_t journal_size = 256 * 1024 * 1024;  // bytes of changes, likewise
    };

    /// Opens or creates the database. Throws std::runtime_error, and leaves the file unchanged, when it cannot be used.
    /// Damage that is found only while loading is reported to the sink, and nothing is written from then on. A file that
    /// cannot be written is opened for reading; changing functions then throw std::runtime_error.
    index_store(const std::filesystem::path& path, index_error_sink error_sink, options settings);
    index_store(const std::filesystem::path& path, index_error_sink error_sink)
        : index_store(path, std::move(error_sink), options()) {}
    /// Saves pending changes; reports those that cannot be saved to the sink. No transaction may be open.
    ~index_store();

    /// Returns the size of the record, 0 when there is none, and copies what fits into the buffer. Throws
    /// std::runtime_error when the database is still being loaded and cannot be read.
    std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const;
    /// The whole record; nothing when there is none. Throws likewise.
    [[nodiscard]] std::optional<std::vector<std::byte>> record(const nuv::guid& index, std::uint64_t key) const;
    /// Returns the keys that have a record, sorted. Waits for loading; throws std::runtime_error when that fails.
    [[nodiscard]] std::vector<std::uint64_t> keys(const nuv::guid& index) const;
    /// At most `at_most` keys from `first` on, the lowest first. Waits and throws as `keys`.
    [[nodiscard]] std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first,
                                                       std::size_t at_most) const;
    /// Every index ever registered or written to.
    [[nodiscard]] std::vector<nuv::guid> indexes() const;

    /// Waits until no transaction is open. Throws `misuse` when this thread has one open.
    [[nodiscard]] store_transaction begin();
    /// For changes with a cause of their own.
    [[nodiscard]] store_transaction begin(change_cause why);
    /// Writes in a transaction of its own. Throws std::invalid_argument when the record is too large.
    void write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data);

    /// Waits until every earlier change is on disk. Throws std::runtime_error when saving fails; the changes are kept and
    /// saved when that is possible again.
    void flush();
    /// Saves everything and makes a dated copy of the database, and of `beside` unless empty. Throws std::runtime_error
    /// when either fails.
    std::filesystem::path back_up(std::string_view reason, const std::filesystem::path& beside = {});
    /// Whether some change is not on disk yet.
    [[nodiscard]] bool pending() const;

    [[nodiscard]] bool is_read_only() const noexcept;
    /// The notice for the user at the start; more detailed than the text of a refused change.
    [[nodiscard]] std::string refusal() const;

    /// Throws std::runtime_error unless `owner` was the first to register the index, in this or an earlier run.
    void register_index(const nuv::guid& index, std::uint64_t retention_100ns, std::string_view owner);
    /// Forgets the registration. The records and the owner stay.
    void remove_index(const nuv::guid& index);
    [[nodiscard]] bool registered(const nuv::guid& index) const;

    /// Marks records as seen now (seconds since 1970). Writing a record marks it as well.
    void touch(const nuv::guid& index, std::span<const std::uint64_t> keys_of_library_tracks, std::int64_t now);
    /// Keys of records not seen for longer than the retention period, without `kept` (sorted); none when the index is not
    /// registered. Throws std::runtime_error like `flush`.
    [[nodiscard]] std::vector<std::uint64_t> old_keys(const nuv::guid& index, std::span<const std::uint64_t> kept,
                                                      std::int64_t now) const;
    /// Notes what was listened to, for good; `by` is the `change_cause::act` that counted it. Throws std::runtime_error for
    /// a file that cannot be written.
    void note(listen heard, std::uint64_t by = 0);
    /// Notes what records belong to. Does nothing for a file that cannot be written.
    void note(std::vector<known_track> tracks);
    /// Grows when keys have got other successors.
    [[nodiscard]] std::uint64_t successor_changes() const noexcept;
    /// What changed the records, and from what to what. Throws std::runtime_error like `flush`.
    [[nodiscard]] journal read_journal();

    /// Removes records from memory and disk. Throws std::runtime_error like `flush`.
    void erase(const nuv::guid& index, std::span<const std::uint64_t> keys);

private:
    friend class store_transaction;
    struct state;
    std::unique_ptr<state> state_;
};

/// Changes that become visible together, or are discarded without `commit`. Nobody else writes while it is open. Used and
/// destroyed on the thread that began it, before the store is destroyed.
class store_transaction {
public:
    store_transaction(store_transaction&&) noexcept;
    store_transaction& operator=(store_transaction&&) = delete;
    ~store_transaction();

    /// Empty data removes the record; that waits for loading and throws std::runtime_error when loading fails. Throws
    /// std::invalid_argument when the record is too large, `misuse` after commit.
    void write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data);
    /// Notes what records belong to. Taking back the act gives keys the successors that they had before.
    void note(std::vector<known_track> tracks);
    /// Instead of the cause of this thread. Before commit.
    void set_cause(change_cause why);
    /// Returns its act in the journal; 0 when nothing is kept.
    std::int64_t commit();

private:
    friend class index_store;
    struct changes;
    store_transaction(index_store::state& store, std::optional<change_cause> why);
    std::unique_ptr<changes> changes_;
};

}  // namespace ostrevan::index
