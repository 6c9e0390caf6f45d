#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "nuv/guid.h"

namespace ostrevan::index {

class store_transaction;

/// Told about failures that nobody waits for; the text is for the user. Called on the store's thread, at the end on the one
/// that destroys the store. It must not throw, and must not hold up or call the store.
using index_error_sink = std::function<void(const std::string& text)>;

/// Persistent small records, found by an index (a GUID) and a 64-bit key. Reads are answered from memory, also while the
/// database is still being loaded; changes are visible at once and reach the disk a moment later, in the background.
/// Everything is [any-thread].
class index_store {
public:
    static constexpr std::size_t max_record_size = 64 * 1024;

    struct options {
        std::chrono::milliseconds retry_interval{1000};  // between attempts to save after a failure
        std::chrono::milliseconds busy_timeout{2000};    // while another program uses the database
        std::function<std::int64_t()> clock{};           // seconds since 1970; the system's when empty
        bool daily_copies = false;                       // puts the database aside before the first change of a day
    };

    /// Opens the database or creates it. Throws std::runtime_error, and leaves the file as it is, when it cannot be used;
    /// damage that only shows when all of it is read is reported to the sink, and from then on nothing is written. A file
    /// that cannot be written is opened for reading: what would change it throws std::runtime_error.
    index_store(const std::filesystem::path& path, index_error_sink error_sink, options settings);
    index_store(const std::filesystem::path& path, index_error_sink error_sink)
        : index_store(path, std::move(error_sink), options()) {}
    /// Saves what is not saved yet; what cannot be saved is reported to the sink. No transaction may be open.
    ~index_store();

    /// The size of the record, 0 when there is none. Copies what fits into the buffer. Throws std::runtime_error when the
    /// database is still being loaded and cannot be read.
    std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const;
    /// Keys that have a record, sorted. Waits for the database to be loaded; throws std::runtime_error when it cannot be.
    [[nodiscard]] std::vector<std::uint64_t> keys(const nuv::guid& index) const;
    /// The lowest keys from `first` on, sorted, at most so many. Waits and throws as `keys`.
    [[nodiscard]] std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first,
                                                       std::size_t at_most) const;
    /// All indexes that were ever registered or written to.
    [[nodiscard]] std::vector<nuv::guid> indexes() const;

    /// Waits until no transaction is open. Throws std::logic_error when this thread has one open.
    [[nodiscard]] store_transaction begin();
    /// A transaction of its own. Throws std::invalid_argument when there are too many bytes.
    void write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data);

    /// Waits until all that was changed before the call is on disk. Throws std::runtime_error when it cannot be saved; it is
    /// kept then, and saved when that is possible again.
    void flush();
    /// Saves everything and puts a dated copy of the database aside, with a copy of another file beside it (none when
    /// empty). Throws std::runtime_error when either cannot be done.
    std::filesystem::path back_up(std::string_view reason, const std::filesystem::path& beside = {});
    /// True while some change is not on disk.
    [[nodiscard]] bool pending() const;

    [[nodiscard]] bool is_read_only() const noexcept;
    /// What the user is told of it at the start; a change that is refused says less.
    [[nodiscard]] std::string refusal() const;

    /// An index belongs to the component that registered it first, in this or in an earlier run: throws std::runtime_error
    /// for another one.
    void register_index(const nuv::guid& index, std::uint64_t retention_100ns, std::string_view owner);
    /// Forgets the registration. The records and the owner stay.
    void remove_index(const nuv::guid& index);
    [[nodiscard]] bool registered(const nuv::guid& index) const;

    /// Marks records as seen now (seconds since 1970). Writing a record marks it as well.
    void touch(const nuv::guid& index, std::span<const std::uint64_t> keys_of_library_tracks, std::int64_t now);
    /// Keys of records not seen for longer than the retention period, apart from those to be kept, which are sorted; none
    /// when the index is not registered. Throws std::runtime_error like `flush`.
    [[nodiscard]] std::vector<std::uint64_t> old_keys(const nuv::guid& index, std::span<const std::uint64_t> kept,
                                                      std::int64_t now) const;
    /// Drops records; they are gone from the disk when it returns. Throws std::runtime_error like `flush`.
    void erase(const nuv::guid& index, std::span<const std::uint64_t> keys);

private:
    friend class store_transaction;
    struct state;
    std::unique_ptr<state> state_;
};

/// Changes that become visible together, or not at all when it is destroyed without commit. While it is open nobody else
/// writes. Used and destroyed on the thread that began it, before the store is.
class store_transaction {
public:
    store_transaction(store_transaction&&) noexcept;
    store_transaction& operator=(store_transaction&&) = delete;
    ~store_transaction();

    /// No bytes remove the record, which waits for the database to be loaded, and throws std::runtime_error when it cannot
    /// be. Throws std::invalid_argument when there are too many bytes, std::logic_error after commit.
    void write(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> data);
    void commit();

private:
    friend class index_store;
    struct changes;
    explicit store_transaction(index_store::state& store);
    std::unique_ptr<changes> changes_;
};

}  // namespace ostrevan::index
