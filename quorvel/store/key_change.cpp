#include "quorvel/store/key_change.h"

#include <stdexcept>

#include "quorvel/store/key.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {

std::vector<key_change> key_changes(const nuv::list_base_const_t<ostrevan::tag_edit>& edits) {
    std::vector<key_change> changes;
    for (const auto& edit : edits) {
        if (!edit.track || edit.after == nullptr) continue;
        const auto& now = edit.track->location();
        const auto& then = edit.location_before != nullptr ? *edit.location_before : now;
        const auto key_from = [&](const ostrevan::file_info* info) {
            return info == nullptr ? std::nullopt : KeyOf(*info, then);
        };
        const auto to = KeyOf(*edit.after, now);
        const auto from = key_from(edit.before);
        const auto from_file = key_from(edit.before_in_file);
        if (!to) continue;
        if (from && from != to) changes.push_back({*from, *to});
        if (from_file && from_file != to && from_file != from) changes.push_back({*from_file, *to});
    }
    return changes;
}

void follow_key_changes(std::span<const key_change> changes) {
    StatsOp op;
    if (!op.has_index()) throw std::runtime_error("No active index");
    for (const auto& [from, to] : changes)
        op.Update(to, [&op, old_key = from](t_playback_stats& record) {
            record = merged(record, op.GetByKey(old_key), MergeType::MergeMax);
        });
    op.finish();
}

}  // namespace quorvel
