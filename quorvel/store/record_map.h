#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "quorvel/store/record.h"

namespace quorvel {

/// Records by key, in the order in which the keys were first set. Made for a million entries: one array of records, and a
/// hash table of positions in it. As long as new keys come in ascending order, as from a backup, the array itself is
/// searched and there is no table.
class record_map {
public:
    /// Null if the key is not there. Valid until the next `set`.
    [[nodiscard]] const t_playback_stats* find(std::uint64_t key) const noexcept;
    void set(std::uint64_t key, const t_playback_stats& record);

    [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }
    [[nodiscard]] std::vector<std::uint64_t> keys() const;

    using entry = std::pair<std::uint64_t, t_playback_stats>;
    [[nodiscard]] const std::vector<entry>& entries() const noexcept { return entries_; }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    [[nodiscard]] std::size_t position_of(std::uint64_t key) const noexcept;
    [[nodiscard]] std::size_t slot_of(std::uint64_t key) const noexcept;
    void grow();

    std::vector<entry> entries_;
    /// One more than the position in `entries_`; 0 for a free slot. The size is a power of two, or 0 while the entries are
    /// in ascending order.
    std::vector<std::uint32_t> slots_;
};

}  // namespace quorvel
