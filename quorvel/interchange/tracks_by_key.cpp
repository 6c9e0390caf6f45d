#include "quorvel/interchange/tracks_by_key.h"

#include <algorithm>
#include <stdexcept>

#include "quorvel/store/key.h"

namespace quorvel {

tracks_by_key::tracks_by_key(const list& tracks) : tracks_(&tracks) {
    const std::size_t count = tracks.get_count();
    if (count > entries_.max_size()) throw std::length_error("list too long");
    entries_.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        if (const auto key = KeyOf(*tracks[i]); key && *key != 0) entries_.push_back({*key, i});
    std::ranges::sort(entries_);
}

std::vector<std::size_t> tracks_by_key::groups() const {
    std::vector<std::size_t> starts;
    starts.reserve(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if (i == 0 || entries_[i - 1].key != entries_[i].key) starts.push_back(i);
    std::ranges::sort(starts, {}, [this](std::size_t start) { return entries_[start].number; });
    return starts;
}

tracks_by_key::group tracks_by_key::group_at(std::size_t position) const noexcept {
    std::size_t end = position + 1;
    while (end < entries_.size() && entries_[end].key == entries_[position].key) ++end;
    return {*tracks_, std::span(entries_).subspan(position, end - position)};
}

tracks_by_key::group tracks_by_key::find_next(std::uint64_t key, std::size_t& position) const noexcept {
    while (position < entries_.size() && entries_[position].key < key) ++position;
    if (position == entries_.size() || entries_[position].key != key) return {*tracks_, {}};
    return group_at(position);
}

}  // namespace quorvel
