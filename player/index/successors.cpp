#include "player/index/successors.h"

#include <algorithm>

namespace ostrevan::index {

void successors::add(std::uint64_t key, std::uint64_t successor) {
    if (next_.try_emplace(key, successor).second) former_.emplace(successor, key);
}

std::optional<std::uint64_t> successors::first_of(std::uint64_t key,
                                                  const std::function<bool(std::uint64_t)>& is_wanted) const {
    for (std::size_t step = 0; !is_wanted(key); ++step) {
        const auto next = next_.find(key);
        if (next == next_.end() || step == most_steps) return std::nullopt;
        key = next->second;
    }
    return key;
}

std::vector<std::uint64_t> successors::leading_to(std::uint64_t key) const {
    std::vector<std::uint64_t> keys{key};
    std::size_t first_of_step = 0;
    for (std::size_t step = 0; step < most_steps && first_of_step < keys.size(); ++step)
        for (const auto end = keys.size(); first_of_step < end; ++first_of_step) {
            const auto [begin, after] = former_.equal_range(keys[first_of_step]);
            for (auto each = begin; each != after; ++each)
                if (std::ranges::find(keys, each->second) == keys.end()) keys.push_back(each->second);
        }
    return keys;
}

}  // namespace ostrevan::index
