#include "quorvel/host/selection_summary.h"

#include <algorithm>
#include <vector>

#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"

namespace quorvel {
namespace {

std::vector<std::uint64_t> distinct_keys(ostrevan::metadb_handle_list_cref tracks) {
    std::vector<std::uint64_t> keys;
    keys.reserve(tracks.get_count());
    for (const auto& track : tracks)
        if (const auto key = KeyOf(*track)) keys.push_back(*key);
    std::ranges::sort(keys);
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

void keep_earliest(std::uint64_t& kept, std::uint64_t time) noexcept {
    if (time != 0 && (kept == 0 || time < kept)) kept = time;
}

}  // namespace

selection_summary summarise(ostrevan::metadb_handle_list_cref tracks) {
    selection_summary sum;
    for (const std::uint64_t key : distinct_keys(tracks)) {
        const auto record = PCDB::GetByKey(key);
        sum.play_count += record.play_count;
        keep_earliest(sum.first_played, record.first_played);
        sum.last_played = std::max(sum.last_played, record.last_played);
        keep_earliest(sum.first_added, record.added);
        sum.last_added = std::max(sum.last_added, record.added);
        if (record.rating != rating_not_set)
            sum.rating = sum.rating == rating_not_set ? record.rating : (sum.rating + record.rating) >> 1;
    }
    return sum;
}

}  // namespace quorvel
