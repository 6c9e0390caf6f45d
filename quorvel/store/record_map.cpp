#include "quorvel/store/record_map.h"

#include <algorithm>
#include <bit>

namespace quorvel {

/// The slot of the key, or the free slot where it belongs.
std::size_t record_map::slot_of(std::uint64_t key) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = static_cast<std::size_t>(key * 0x9E3779B97F4A7C15ULL >> 20) & mask;
    while (slots_[slot] != 0 && entries_[slots_[slot] - 1].first != key) slot = (slot + 1) & mask;
    return slot;
}

std::size_t record_map::position_of(std::uint64_t key) const noexcept {
    if (!slots_.empty()) return std::size_t{slots_[slot_of(key)]} - 1;
    if (entries_.empty() || entries_.back().first < key) return none;
    const auto found = std::ranges::lower_bound(entries_, key, {}, &entry::first);
    return found->first == key ? static_cast<std::size_t>(found - entries_.begin()) : none;
}

const t_playback_stats* record_map::find(std::uint64_t key) const noexcept {
    const std::size_t position = position_of(key);
    return position == none ? nullptr : &entries_[position].second;
}

void record_map::set(std::uint64_t key, const t_playback_stats& record) {
    if (const std::size_t position = position_of(key); position != none) {
        entries_[position].second = record;
        return;
    }
    const bool ascending = slots_.empty() && (entries_.empty() || entries_.back().first < key);
    entries_.emplace_back(key, record);
    if (ascending) return;
    if (entries_.size() * 2 > slots_.size()) grow();
    else slots_[slot_of(key)] = static_cast<std::uint32_t>(entries_.size());
}

/// Also makes the first table, when a key comes out of order.
void record_map::grow() {
    slots_.assign(std::bit_ceil(entries_.size() * 2), 0);
    for (std::size_t i = 0; i < entries_.size(); ++i) slots_[slot_of(entries_[i].first)] = static_cast<std::uint32_t>(i + 1);
}

std::vector<std::uint64_t> record_map::keys() const {
    std::vector<std::uint64_t> keys;
    keys.reserve(entries_.size());
    for (const auto& [key, record] : entries_) keys.push_back(key);
    return keys;
}

}  // namespace quorvel
