#include "quorvel/store/stats_op.h"

#include "ostrevan/core_api.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

std::mutex turn_of_own_writers;

}  // namespace

t_playback_stats StatsOp::GetByKey(std::uint64_t key) const {
    if (const auto* const own = written_.find(key)) return *own;
    return Find(statistics_index_guid, key).value_or(t_playback_stats{});
}

std::optional<t_playback_stats> StatsOp::Find(const nuv::guid& index, std::uint64_t key) const {
    return has_index() ? find_record(*manager_, index, key) : std::nullopt;
}

void StatsOp::SetByKey(std::uint64_t key, const t_playback_stats& record) {
    if (key == 0 || !has_index()) return;
    const auto blob = encode_record(record);
    put(statistics_index_guid, key, blob.data(), blob.size());
    written_.set(key, record);
}

void StatsOp::Remove(const nuv::guid& index, std::uint64_t key) {
    if (!has_index()) return;
    put(index, key, nullptr, 0);
    if (index == statistics_index_guid) written_.set(key, {});
}

void StatsOp::put(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) {
    begin();
    if (transaction_) transaction_->write(index, key, bytes, size);
    else manager_->write(index, key, bytes, size);
}

void StatsOp::begin() {
    if (begun_) return;
    if (has_index()) {
        if (const auto extension = ostrevan::query_service<ostrevan::index_manager_transactions>(*manager_))
            transaction_ = extension->begin();
        else own_turn_ = std::unique_lock(turn_of_own_writers);
    }
    if (transaction_ && !reason_.empty())
        if (const auto named = ostrevan::query_service<ostrevan::index_transaction_reason>(*transaction_))
            named->set_reason(reason_.c_str());
    begun_ = true;
}

void StatsOp::finish() {
    if (transaction_) transaction_->commit();
    transaction_.reset();
    if (own_turn_.owns_lock()) own_turn_.unlock();
    refresh_keys(changed_keys());
}

}  // namespace quorvel
