#include "quorvel/store/date_added.h"

#include <algorithm>
#include <vector>

#include "quorvel/store/key.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {
namespace {

/// Each key once, in ascending order, which is the fastest to store.
std::vector<std::uint64_t> keys_without_date(const ostrevan::metadb_handle_list& tracks) {
    std::vector<std::uint64_t> keys;
    for (const auto& track : tracks.items())
        if (const auto key = ComputeKeyOf(*track); key && *key != 0 && read_record(*key).added == 0) keys.push_back(*key);
    std::ranges::sort(keys);
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

}  // namespace

void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now) {
    StatsOp op;
    if (!op.has_index()) return;
    const auto keys = keys_without_date(tracks);
    if (keys.empty()) return;
    op.begin();
    for (const std::uint64_t key : keys)
        op.Update(key, [now](t_playback_stats& record) {
            if (record.added == 0) record.added = now;
        });
    op.finish();
}

}  // namespace quorvel
