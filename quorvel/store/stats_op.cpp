#include "quorvel/store/stats_op.h"

#include "quorvel/store/key.h"

namespace quorvel {

t_playback_stats StatsOp::GetByKey(std::uint64_t key) const {
    if (const auto* const own = written_.find(key)) return *own;
    return writer_.find(statistics_index_guid, key).value_or(t_playback_stats{});
}

void StatsOp::SetByKey(std::uint64_t key, const t_playback_stats& record) {
    if (key == 0 || !has_index()) return;
    writer_.begin();
    writer_.write(key, record);
    written_.set(key, record);
}

void StatsOp::Remove(const nuv::guid& index, std::uint64_t key) {
    writer_.begin();
    writer_.remove(index, key);
    if (index == statistics_index_guid) written_.set(key, {});
}

void StatsOp::publish() const { refresh_keys(changed_keys()); }

}  // namespace quorvel
