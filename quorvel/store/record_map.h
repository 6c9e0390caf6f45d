#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "quorvel/store/record.h"

namespace quorvel {

/// Records by key, in the order in which the keys came first. Made for a million entries: one array of records, and one of
/// positions in it, probed in sequence.
class record_map {
public:
    /// Null when the key is not there. Valid until the next `set`.
    [[nodiscard]] const t_playback_stats* find(std::uint64_t key) const noexcept;
    void set(std::uint64_t key, const t_playback_stats& record);

    [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }
    [[nodiscard]] std::vector<std::uint64_t> keys() const;

    using entry = std::pair<std::uint64_t, t_playback_stats>;
    [[nodiscard]] const std::vector<entry>& entries() const noexcept { return entries_; }

private:
    [[nodiscard]] std::size_t slot_of(std::uint64_t key) const noexcept;
    void grow();

    std::vector<entry> entries_;
    /// One more than the position in `entries_`; 0 for a free slot. The size is a power of two.
    std::vector<std::uint32_t> slots_;
};

}  // namespace quorvel
