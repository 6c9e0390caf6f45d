#include "player/library/library_files.h"

#include <bit>

#include "player/library/path_hash.h"

namespace ostrevan::library {
std::size_t library_files::slot_of(std::string_view path, std::uint32_t hash) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].position != 0 && (slots_[at].hash != hash || place(slots_[at].position - 1).first != path))
        at = (at + 1) & mask;
    return at;
}

std::size_t library_files::position_of(std::string_view path) const noexcept {
    const auto position = slots_[slot_of(path, hash_of_path(path))].position;
    return position == 0 ? places_ : position - 1;
}

void library_files::reserve(std::size_t files) {
    if (files <= slots_.size() / 4 * 3) return;
    const auto old = std::exchange(slots_, std::vector<hashed>(std::bit_ceil(files / 3 * 4 + 4)));
    const std::size_t mask = slots_.size() - 1;
    for (const auto& each : old) {
        if (each.position == 0) continue;
        std::size_t at = each.hash & mask;
        while (slots_[at].position != 0) at = (at + 1) & mask;
        slots_[at] = each;
    }
}

library_files::iterator library_files::add(std::string_view path) { return try_add(path, hash_of_path(path)).first; }

std::pair<library_files::iterator, bool> library_files::try_add(std::string_view path, std::uint32_t hash) {
    reserve(size() + 1);
    auto& slot = slots_[slot_of(path, hash)];
    if (slot.position != 0) return {{*this, slot.position - 1}, false};
    std::size_t at = places_;
    if (!free_.empty()) {
        at = free_.back();
        free_.pop_back();
    } else {
        if (places_ == blocks_.size() * block_size) blocks_.push_back(std::make_unique<value_type[]>(block_size));
        ++places_;
    }
    place(at).first = path;
    slot = {hash, static_cast<std::uint32_t>(at + 1)};
    return {{*this, at}, true};
}

/// Moves later slots up, so that no marks are left.
void library_files::erase(iterator which) noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t gap = slot_of(which->first, hash_of_path(which->first));
    for (std::size_t next = (gap + 1) & mask; slots_[next].position != 0; next = (next + 1) & mask) {
        const std::size_t distance = (next - slots_[next].hash) & mask;
        if (distance < ((next - gap) & mask)) continue;
        slots_[gap] = slots_[next];
        gap = next;
    }
    slots_[gap] = {};
    free_.push_back(which.at_);
    *which = {};
}

}  // namespace ostrevan::library
