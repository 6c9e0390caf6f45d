#include "player/library/track_table.h"

#include <bit>
#include <utility>

#include "player/library/path_hash.h"

namespace ostrevan::library {

std::uint32_t track_table::hash_of(std::uint32_t path_hash, std::uint32_t subsong) noexcept {
    return static_cast<std::uint32_t>(path_hash ^ subsong * 0x9E3779B97F4A7C15ULL);
}

/// The slot of the location, or the free one where it belongs.
std::size_t track_table::slot_of(std::string_view path, std::uint32_t subsong, std::uint32_t hash) const noexcept {
    const auto is_other = [&](std::size_t slot) {
        return hashes_[slot] != hash || slots_[slot]->location().subsong != subsong || slots_[slot]->location().path != path;
    };
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot] && is_other(slot)) slot = (slot + 1) & (slots_.size() - 1);
    return slot;
}

void track_table::make_room(std::size_t tracks) {
    if (tracks <= slots_.size() / 4 * 3) return;
    const auto size = std::bit_ceil(tracks / 3 * 4 + 4);
    auto slots = std::exchange(slots_, std::vector<track_ptr>(size));
    const auto hashes = std::exchange(hashes_, std::vector<std::uint32_t>(size));
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (!slots[i]) continue;
        std::size_t slot = hashes[i] & (size - 1);
        while (slots_[slot]) slot = (slot + 1) & (size - 1);
        slots_[slot] = std::move(slots[i]);
        hashes_[slot] = hashes[i];
    }
}

track_ptr track_table::obtain(std::string_view path, std::uint32_t subsong) {
    if (auto known = find(path, subsong)) return known;
    return adopt(service_new<track>(playable_location{std::string(path), subsong}), hash_of_path(path));
}

track_ptr track_table::adopt(track_ptr made, std::uint32_t path_hash) {
    const auto& [path, subsong] = made->location();
    const auto hash = hash_of(path_hash, subsong);
    const std::lock_guard guard(mutex_);
    make_room(used_ + 1);
    const auto slot = slot_of(path, subsong, hash);
    if (slots_[slot]) return slots_[slot];
    ++used_;
    hashes_[slot] = hash;
    slots_[slot] = std::move(made);
    return slots_[slot];
}

track_ptr track_table::find(std::string_view path, std::uint32_t subsong) const {
    const std::lock_guard guard(mutex_);
    return slots_[slot_of(path, subsong, hash_of(hash_of_path(path), subsong))];
}

void track_table::reserve(std::size_t tracks) {
    const std::lock_guard guard(mutex_);
    make_room(tracks);
}

void track_table::leave_behind() {
    static auto& left = *new std::vector<std::vector<track_ptr>>;
    const std::lock_guard guard(mutex_);
    left.push_back(std::exchange(slots_, std::vector<track_ptr>(8)));
    hashes_.assign(slots_.size(), 0);
    used_ = 0;
}

}  // namespace ostrevan::library
