#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

namespace ostrevan::index {

/// Which key followed which, in one index, after edits of tags. What was noted under a former key belongs to the track with
/// the key of today.
class successors {
public:
    /// Steps from key to key, more than anybody edits the tags of a track. A track that has its former tags again makes a
    /// circle.
    static constexpr std::size_t most_steps = 64;

    void add(std::uint64_t key, std::uint64_t successor);

    /// The first of the key itself, its successor, the successor of that one and so on that is wanted.
    [[nodiscard]] std::optional<std::uint64_t> first_of(std::uint64_t key,
                                                        const std::function<bool(std::uint64_t)>& is_wanted) const;
    /// The key itself, then the keys that lead to it, the nearest first.
    [[nodiscard]] std::vector<std::uint64_t> leading_to(std::uint64_t key) const;

private:
    std::unordered_map<std::uint64_t, std::uint64_t> next_;
    std::unordered_multimap<std::uint64_t, std::uint64_t> former_;
};

}  // namespace ostrevan::index
