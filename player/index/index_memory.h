#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "nuv/guid.h"
#include "player/index/index_changes.h"
#include "player/index/reader_lock.h"
#include "player/index/record_table.h"

namespace ostrevan::index {

/// All indexes in memory. Reading is [any-thread] and never waits long: changes are applied in small pieces, with the lock
/// free between two of them.
class index_memory {
public:
    /// The result of a read. While the database is being loaded, a record not in memory must be looked up there, under
    /// `ask_index`. Two words, to be returned in registers.
    struct answer {
        std::size_t size = 0;
        std::int64_t ask_index = 0;  // 0 when the size is final
    };

    explicit index_memory(std::span<const catalog_entry> catalog);

    [[nodiscard]] answer read(const nuv::guid& guid, std::uint64_t key, void* buffer, std::size_t capacity) const noexcept;

    /// Applies the changes of a commit, and returns the record before each of them. One thread at a time.
    change_list apply(std::int64_t index_id, const change_list& list);
    /// Adds rows of the database; newer records written meanwhile stay.
    void add_loaded(std::int64_t index_id, const change_list& list);
    /// All rows have been added: from now on reads are final.
    void finish_loading() noexcept;
    [[nodiscard]] bool is_loaded() const noexcept;

    /// Sorted; sees each commit as a whole. All rows must have been loaded.
    [[nodiscard]] std::vector<std::uint64_t> keys(const nuv::guid& guid) const;

    /// At most `at_most` keys from `first` on, the lowest first. The cost is about that of these keys alone.
    [[nodiscard]] std::vector<std::uint64_t> keys_from(const nuv::guid& guid, std::uint64_t first,
                                                       std::size_t at_most) const;

    [[nodiscard]] std::vector<catalog_entry> catalog() const;
    [[nodiscard]] std::optional<catalog_entry> find(const nuv::guid& guid) const noexcept;
    /// Adds an index that is not registered. One thread at a time, as with `update`.
    catalog_entry add(const nuv::guid& guid);
    void update(catalog_entry entry) noexcept;

private:
    struct index {
        catalog_entry entry;
        record_table records;
    };

    /// For comparing in two steps instead of eleven.
    static std::array<std::uint64_t, 2> words_of(const nuv::guid& guid) noexcept {
        return std::bit_cast<std::array<std::uint64_t, 2>>(guid);
    }
    /// The caller holds the lock or is the only writer.
    [[nodiscard]] index* find_index(const nuv::guid& guid) const noexcept {
        const auto wanted = words_of(guid);
        for (const auto& each : indexes_)
            if (words_of(each->entry.guid) == wanted) return each.get();
        return nullptr;
    }
    [[nodiscard]] index& index_of(std::int64_t index_id) noexcept;
    template <typename Step>
    void in_pieces(const change_list& list, Step step);

    mutable reader_lock lock_;
    std::vector<std::unique_ptr<index>> indexes_;  // never removed, a handful
    bool loaded_ = false;
    mutable std::mutex whole_commits_;  // held while a commit is applied, taken before lock_
};

inline index_memory::answer index_memory::read(const nuv::guid& guid, std::uint64_t key, void* buffer,
                                               std::size_t capacity) const noexcept {
    const auto reading = lock_.read();
    const index* from = find_index(guid);
    if (from == nullptr) return {};
    const auto found = from->records.find(key);
    if (found.data() == nullptr) return {.size = 0, .ask_index = loaded_ ? 0 : from->entry.id};
    if (found.size() == record_table::inline_size && capacity >= record_table::inline_size)
        std::memcpy(buffer, found.data(), record_table::inline_size);
    else if (const std::size_t size = std::min(found.size(), capacity); size != 0) std::memcpy(buffer, found.data(), size);
    return {.size = found.size(), .ask_index = 0};
}

}  // namespace ostrevan::index
