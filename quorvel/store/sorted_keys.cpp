#include "quorvel/store/sorted_keys.h"

#include <algorithm>
#include <functional>
#include <future>

#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// From the tracks `first` to `last`, without the latter.
std::vector<std::uint64_t> sorted_part(ostrevan::metadb_handle_list_cref tracks, std::size_t first, std::size_t last,
                                       const std::function<bool(std::uint64_t key)>& is_wanted) {
    std::vector<std::uint64_t> keys;
    keys.reserve(last - first);
    for (std::size_t i = first; i < last; ++i)
        if (const auto key = KeyOf(*tracks[i]); key && *key != 0) keys.push_back(*key);
    std::ranges::sort(keys);
    if (is_wanted) std::erase_if(keys, std::not_fn(is_wanted));
    return keys;
}

}  // namespace

std::vector<std::uint64_t> SortedKeysOf(ostrevan::metadb_handle_list_cref tracks,
                                        const std::function<bool(std::uint64_t key)>& is_wanted) {
    constexpr std::size_t many = 10'000;
    const std::size_t count = tracks.get_count();
    std::future<std::vector<std::uint64_t>> other;
    if (count >= many) other = std::async(std::launch::async, [&] { return sorted_part(tracks, 0, count / 2, is_wanted); });
    auto keys = sorted_part(tracks, other.valid() ? count / 2 : 0, count, is_wanted);
    if (other.valid()) {
        const auto first = other.get();
        std::vector<std::uint64_t> all(first.size() + keys.size());
        std::ranges::merge(first, keys, all.begin());
        keys.swap(all);
    }
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

}  // namespace quorvel
