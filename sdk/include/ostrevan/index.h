#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nuv/list.h"
#include "ostrevan/track.h"

namespace ostrevan {

/// The key function of an index. The player calls it for every track that it indexes. [any-thread]
class index_client : public service_base {
public:
    /// Best a digest: keys that are spread over all 64 bits are kept fastest.
    [[nodiscard]] virtual std::uint64_t key_of(const file_info& info, const playable_location& location) = 0;
};
using index_client_ptr = service_ptr_t<index_client>;

/// The track-information index: blobs that the player keeps for components under 64-bit keys, apart from the tracks
/// themselves. [any-thread] unless said otherwise.
class index_manager : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{B9633863-2683-4163-A58D-26475DB0E79B}");

    /// Registers an index. `retention` is how long at least the blobs of tracks that have left the library are kept, in 100
    /// ns. Throws when the index cannot be opened. [main-thread]
    virtual void register_index(index_client_ptr client, const nuv::guid& index, std::uint64_t retention) = 0;
    /// Forgets a registration, whether it was complete or not; the blobs stay. [main-thread]
    virtual void remove_index(const nuv::guid& index) = 0;

    /// Copies at most `capacity` bytes of the blob and returns its whole size; 0 when there is none. Never waits for a
    /// writer.
    virtual std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const = 0;
    /// A transaction of one blob; an empty one removes what is there. The index need not be registered.
    virtual void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) = 0;
    /// Every key that has a blob, in ascending order.
    [[nodiscard]] virtual std::vector<std::uint64_t> keys(const nuv::guid& index) const = 0;
    /// The lowest keys from `first` on that have a blob, at most so many, in ascending order: for going through an index of
    /// any size in portions.
    [[nodiscard]] virtual std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first,
                                                               std::size_t at_most) const = 0;
    /// Returns when everything committed before the call is on disk; throws when that cannot be had.
    virtual void save_now(const nuv::guid& index) = 0;
    /// Redraws everything that shows one of these keys. [main-thread]
    virtual void refresh(const nuv::guid& index, const nuv::list_base_const_t<std::uint64_t>& keys) = 0;
};

/// Writes that take effect together or not at all. While a transaction is open it excludes all other writers; released
/// without `commit` it has no effect. It belongs to the thread that began it.
class index_transaction : public service_base {
public:
    /// As `index_manager::write`, but seen by reads after `commit`.
    virtual void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) = 0;
    /// Makes the writes visible and hands them to the disk; `index_manager::save_now` waits for that. At most once.
    virtual void commit() = 0;
};
using index_transaction_ptr = service_ptr_t<index_transaction>;

/// Extension of the index manager, found by `service_query`. [any-thread]
class index_manager_transactions : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{FE0A0528-5505-4744-97ED-CFC9037C8C14}");

    /// Waits until no other transaction is open. A second one on the same thread is a bug check.
    virtual index_transaction_ptr begin() = 0;
};

/// Extension of the index manager, found by `service_query`: copies of everything that is stored.
class index_manager_backup : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{F7C1B7E2-5E1B-4E7C-9C43-7B7F0A4D2E68}");

    /// Puts a dated copy of all indexes aside, before a change that nobody could take back, and beside it a copy of a file
    /// (null for none). `reason` becomes part of the names: "legacy-import". Throws when the copies cannot be made; there
    /// are none then. [main-thread]
    virtual void back_up(const char* reason, const char* beside) = 0;
};

}  // namespace ostrevan
