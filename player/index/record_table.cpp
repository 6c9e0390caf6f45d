#include "player/index/record_table.h"

#include <algorithm>
#include <utility>

namespace ostrevan::index {

std::size_t record_table::put(std::uint64_t key, bytes data) {
    const std::uint64_t hash = hash_of(key);
    shard& in = shards_[shard_of(key)];
    if (data.size() != inline_size) {
        if (in.odd == nullptr) in.odd = std::make_unique<odd_records>();
        auto& odd = (*in.odd)[key];
        odd.assign(1, {});
        odd.insert(odd.end(), data.begin(), data.end());
        in.erase_inline(key);
        return 0;
    }
    std::size_t moved = 0;
    if ((in.used + 1) * 4ULL > in.capacity * 3ULL) {
        moved = in.used;
        in.grow();
    }
    const std::uint32_t position = in.locate(key, hash);
    if (in.tags[position] == 0) {
        in.tags[position] = tag_of(hash);
        ++in.used;
        if (in.odd != nullptr) in.odd->erase(key);
    }
    in.slots[position].key = key;
    std::ranges::copy(data, in.slots[position].data.begin());
    return moved;
}

void record_table::erase(std::uint64_t key) noexcept {
    shard& in = shards_[shard_of(key)];
    if (in.odd != nullptr) in.odd->erase(key);
    in.erase_inline(key);
}

void record_table::append_keys(std::size_t shard_index, std::vector<std::uint64_t>& keys) const {
    const shard& in = shards_[shard_index];
    for (std::uint32_t i = 0; i < in.capacity; ++i)
        if (in.tags[i] != 0) keys.push_back(in.slots[i].key);
    if (in.odd == nullptr) return;
    for (const auto& [key, data] : *in.odd) keys.push_back(key);
}

void record_table::shard::grow() {
    constexpr std::uint32_t first_capacity = 8;
    const std::uint32_t old_capacity = capacity;
    const std::uint32_t new_capacity = std::max(first_capacity, old_capacity + old_capacity / 2);
    auto new_tags = std::make_unique<std::uint8_t[]>(new_capacity);
    const auto old_slots = std::exchange(slots, std::make_unique_for_overwrite<slot[]>(new_capacity));
    const auto old_tags = std::exchange(tags, std::move(new_tags));
    capacity = new_capacity;
    for (std::uint32_t i = 0; i < old_capacity; ++i) {
        if (old_tags[i] == 0) continue;
        const std::uint32_t position = locate(old_slots[i].key, hash_of(old_slots[i].key));
        slots[position] = old_slots[i];
        tags[position] = old_tags[i];
    }
}

/// Moves later records up, so that removals leave no marks behind.
void record_table::shard::erase_inline(std::uint64_t key) noexcept {
    if (capacity == 0) return;
    std::uint32_t gap = locate(key, hash_of(key));
    if (tags[gap] == 0) return;
    --used;
    for (std::uint32_t next = after(gap); tags[next] != 0; next = after(next)) {
        const std::uint32_t wanted = home(hash_of(slots[next].key));
        const bool is_reachable = gap < next ? wanted > gap && wanted <= next : wanted > gap || wanted <= next;
        if (is_reachable) continue;
        slots[gap] = slots[next];
        tags[gap] = tags[next];
        gap = next;
    }
    tags[gap] = 0;
}

}  // namespace ostrevan::index
