#include "player/index/record_table.h"

#include <algorithm>
#include <utility>

namespace ostrevan::indexing {

std::size_t record_table::put(std::uint64_t key, bytes data) {
    shard& in = shards_[shard_of(hash_of(key))];
    if (key == 0 || data.size() != inline_size) {
        if (in.odd == nullptr) in.odd = std::make_unique<odd_records>();
        (*in.odd)[key].assign(data.begin(), data.end());
        if (key != 0) in.erase_inline(key);
        return 0;
    }
    std::size_t moved = 0;
    if ((in.used + 1) * 4ULL > in.capacity * 3ULL) {
        moved = in.used;
        in.grow();
    }
    slot& place = in.locate(key);
    if (place.key == 0) {
        ++in.used;
        if (in.odd != nullptr) in.odd->erase(key);
    }
    place.key = key;
    std::ranges::copy(data, place.data.begin());
    return moved;
}

void record_table::erase(std::uint64_t key) noexcept {
    shard& in = shards_[shard_of(hash_of(key))];
    if (in.odd != nullptr) in.odd->erase(key);
    if (key != 0) in.erase_inline(key);
}

void record_table::append_keys(std::size_t shard_index, std::vector<std::uint64_t>& keys) const {
    const shard& in = shards_[shard_index];
    for (std::uint32_t i = 0; i < in.capacity; ++i)
        if (in.slots[i].key != 0) keys.push_back(in.slots[i].key);
    if (in.odd == nullptr) return;
    for (const auto& [key, data] : *in.odd) keys.push_back(key);
}

void record_table::shard::grow() {
    constexpr std::uint32_t first_capacity = 8;
    const std::uint32_t old_capacity = capacity;
    const std::uint32_t new_capacity = std::max(first_capacity, old_capacity + old_capacity / 2);
    const auto old_slots = std::exchange(slots, std::make_unique<slot[]>(new_capacity));
    capacity = new_capacity;
    for (std::uint32_t i = 0; i < old_capacity; ++i)
        if (old_slots[i].key != 0) locate(old_slots[i].key) = old_slots[i];
}

/// Closes the gap with the records behind it, so that no marks of removed records pile up.
void record_table::shard::erase_inline(std::uint64_t key) noexcept {
    if (capacity == 0) return;
    slot* gap = &locate(key);
    if (gap->key == 0) return;
    --used;
    auto position = static_cast<std::uint32_t>(gap - slots.get());
    for (std::uint32_t next = after(position); slots[next].key != 0; next = after(next)) {
        const std::uint32_t wanted = home(hash_of(slots[next].key));
        const bool reachable = position < next ? wanted > position && wanted <= next : wanted > position || wanted <= next;
        if (reachable) continue;
        slots[position] = slots[next];
        position = next;
    }
    slots[position].key = 0;
}

}  // namespace ostrevan::indexing
