#include "quorvel/store/stats_op.h"

namespace quorvel {

t_playback_stats StatsOp::GetByKey(std::uint64_t key) const {
    if (const auto* const own = written_.find(key)) return *own;
    return writer_.begun() ? writer_.read(key) : read_record(key);
}

void StatsOp::SetByKey(std::uint64_t key, const t_playback_stats& record) {
    if (key == 0 || opened_index() == nullptr) return;
    writer_.begin();
    writer_.write(key, record);
    written_.set(key, record);
}

void StatsOp::publish() const { refresh_keys(changed_keys()); }

}  // namespace quorvel
