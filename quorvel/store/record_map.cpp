#include "quorvel/store/record_map.h"

namespace quorvel {

/// The slot that holds the key, or the free one where it belongs. Keys are halves of digests: any of their bits will do.
std::size_t record_map::slot_of(std::uint64_t key) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = static_cast<std::size_t>(key * 0x9E3779B97F4A7C15ULL >> 20) & mask;
    while (slots_[slot] != 0 && entries_[slots_[slot] - 1].first != key) slot = (slot + 1) & mask;
    return slot;
}

const t_playback_stats* record_map::find(std::uint64_t key) const noexcept {
    if (entries_.empty()) return nullptr;
    const std::uint32_t position = slots_[slot_of(key)];
    return position == 0 ? nullptr : &entries_[position - 1].second;
}

void record_map::set(std::uint64_t key, const t_playback_stats& record) {
    if ((entries_.size() + 1) * 2 > slots_.size()) grow();
    const std::size_t slot = slot_of(key);
    if (slots_[slot] != 0) {
        entries_[slots_[slot] - 1].second = record;
        return;
    }
    entries_.emplace_back(key, record);
    slots_[slot] = static_cast<std::uint32_t>(entries_.size());
}

void record_map::grow() {
    slots_.assign(slots_.empty() ? 8 : slots_.size() * 2, 0);
    for (std::size_t i = 0; i < entries_.size(); ++i) slots_[slot_of(entries_[i].first)] = static_cast<std::uint32_t>(i + 1);
}

std::vector<std::uint64_t> record_map::keys() const {
    std::vector<std::uint64_t> keys;
    keys.reserve(entries_.size());
    for (const auto& [key, record] : entries_) keys.push_back(key);
    return keys;
}

}  // namespace quorvel
