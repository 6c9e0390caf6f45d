#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nuv/list.h"
#include "ostrevan/track.h"

namespace ostrevan {

/// The key function of an index. The player calls it for every track that it indexes. [any-thread]
class index_client : public service_base {
public:
    /// Use a digest: the index is fastest with keys spread over all 64 bits.
    [[nodiscard]] virtual std::uint64_t key_of(const file_info& info, const playable_location& location) = 0;
};
using index_client_ptr = service_ptr_t<index_client>;

/// Extension of the key function, found by `service_query`: lets the player change blobs at the user's request.
class index_record_editing : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{1A537703-7FA3-4D5B-97B5-EDF9FCB96E92}");

    /// Returns the blob of a key with `into` when a track with `from` gets that key, as after an edit of its tags. Empty
    /// spans are keys without a blob. [any-thread]
    [[nodiscard]] virtual std::vector<std::byte> merged(std::span<const std::byte> into,
                                                        std::span<const std::byte> from) = 0;
    /// The player has changed the blobs of these tracks: it has taken back an operation, or given a blob to another track.
    /// [main-thread]
    virtual void on_records_changed(metadb_handle_list_cref tracks) = 0;
};

/// Extension of the key function, found by `service_query`: keys that the player has computed with it while it read its
/// tracks, so that nobody has to ask for the information of each track again.
class index_key_memory : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{8B7F2C54-90E6-4D1A-B3C8-2F61A5D7E049}");

    /// `serial` is that of the snapshot whose key this is. [any-thread]
    virtual void remember(std::uint64_t serial, std::uint64_t key) = 0;
};

/// The track-information index: blobs under 64-bit keys that the player keeps for components, independent of the tracks.
/// [any-thread] unless a method says otherwise.
class index_manager : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{B9633863-2683-4163-A58D-26475DB0E79B}");

    /// Size limit of a blob, in bytes.
    static constexpr std::size_t max_blob_size = 65'536;

    /// Registers an index. The blobs of tracks that have left the library are kept at least for `retention`, in units of 100
    /// ns. Throws when the index cannot be opened or belongs to another component. [main-thread]
    virtual void register_index(index_client_ptr client, const nuv::guid& index, std::uint64_t retention) = 0;
    /// Undoes a registration, also one that failed; the blobs stay. [main-thread]
    virtual void remove_index(const nuv::guid& index) = 0;

    /// Copies at most `capacity` bytes of the blob and returns its whole size; 0 when there is none. Never waits for a
    /// writer.
    virtual std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const = 0;
    /// A transaction of one blob; an empty blob removes the record. The index need not be registered. Throws
    /// `std::invalid_argument` for a blob that is too large. While this thread has a transaction open it is a bug check.
    virtual void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) = 0;
    /// Every key that has a blob, in ascending order.
    [[nodiscard]] virtual std::vector<std::uint64_t> keys(const nuv::guid& index) const = 0;
    /// The lowest keys from `first` on that have a blob, `at_most` of them, in ascending order: for walking through a large
    /// index in portions.
    [[nodiscard]] virtual std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first,
                                                               std::size_t at_most) const = 0;
    /// Returns once everything committed before the call is on disk; throws when it cannot be written.
    virtual void save_now(const nuv::guid& index) = 0;
    /// Redraws every view of these keys. [main-thread]
    virtual void refresh(const nuv::guid& index, const nuv::list_base_const_t<std::uint64_t>& keys) = 0;
};

/// Writes that take effect together or not at all. An open transaction excludes all other writers. Released without
/// `commit` it has no effect. Only the thread that began it may use and release it.
class index_transaction : public service_base {
public:
    /// As `index_manager::write`, but reads see it only after `commit`, those of this thread too. After `commit` it is a bug
    /// check.
    virtual void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) = 0;
    /// Makes the writes visible and starts writing them to disk; `index_manager::save_now` waits for that. A second call is
    /// a bug check.
    virtual void commit() = 0;
};
using index_transaction_ptr = service_ptr_t<index_transaction>;

/// Extension of a transaction, found by `service_query`: its reason in the player's history of changes.
class index_transaction_reason : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{E0AD31CE-F5D2-46F8-8F16-C50986692B35}");

    /// For the user, such as "import of statistics.xml". Without one the history has the user's command. Called before
    /// `commit` by the thread of the transaction.
    virtual void set_reason(const char* text) = 0;
};

/// Extension of the index manager, found by `service_query`. [any-thread]
class index_manager_transactions : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{FE0A0528-5505-4744-97ED-CFC9037C8C14}");

    /// Waits until no other transaction is open. A second one on the same thread is a bug check.
    virtual index_transaction_ptr begin() = 0;
};

/// Extension of the index manager, found by `service_query`: backups.
class index_manager_backup : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{F7C1B7E2-5E1B-4E7C-9C43-7B7F0A4D2E68}");

    /// Makes a dated copy of all indexes before a change that cannot be undone, and next to it a copy of the file `beside`
    /// (null for none). `reason` becomes part of the names: "legacy-import". Throws when the copies cannot be made, and
    /// leaves none. [main-thread]
    virtual void back_up(const char* reason, const char* beside) = 0;
};

}  // namespace ostrevan
