#include "quorvel/store/date_added.h"

#include "quorvel/store/sorted_keys.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {

void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now) {
    StatsOp op;
    if (!op.has_index()) return;
    const auto undated = SortedKeysOf(tracks, [](std::uint64_t key) { return read_record(key).added == 0; });
    if (undated.empty()) return;
    op.begin();
    for (const std::uint64_t key : undated)
        op.Update(key, [now](t_playback_stats& record) {
            if (record.added == 0) record.added = now;
        });
    op.finish();
}

}  // namespace quorvel
