#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quorvel/store/merge.h"
#include "quorvel/store/record_map.h"
#include "quorvel/store/statistics_index.h"

namespace quorvel {

/// One operation on any number of records: one transaction, begun before the first write, and one refresh at the end. Reads
/// see its own writes. Destroyed before `finish` it has no effect. With a player that offers no transactions, a lock among
/// the component's own writers takes their place, and each write takes effect at once.
/// An operation keeps to the index that was open when it was made, so that it can be finished after the index is closed.
/// Used by one thread. [any-thread]
class StatsOp {
public:
    /// `reason` is shown in the player's history; without one, the user's command is.
    explicit StatsOp(std::string reason = {}) : reason_(std::move(reason)) {}

    /// Without an index records read as the default one, and writes are skipped.
    [[nodiscard]] bool has_index() const noexcept { return manager_ != nullptr; }

    /// Throws when the record cannot be read: to edit a default record in its place would destroy it.
    [[nodiscard]] t_playback_stats GetByKey(std::uint64_t key) const;
    /// What one of the component's indexes held before this operation; nothing if there was no record. Throws likewise.
    [[nodiscard]] std::optional<t_playback_stats> Find(const nuv::guid& index, std::uint64_t key) const;

    /// Key 0 is skipped.
    void SetByKey(std::uint64_t key, const t_playback_stats& record);
    void Remove(const nuv::guid& index, std::uint64_t key);

    /// Writes only what `edit` changes. An edit that changes something outside the transaction is made again on what is read
    /// inside it, so that nothing written in between is lost.
    template <typename Edit>
    void Update(std::uint64_t key, Edit&& edit) {
        if (key == 0) return;
        const auto edited = [&] {
            auto record = GetByKey(key);
            const auto before = record;
            edit(record);
            return std::pair(record, !(record == before));
        };
        if (!begun_ && !edited().second) return;
        begin();
        if (const auto [record, changed] = edited(); changed) SetByKey(key, record);
    }

    void MergeStats(std::uint64_t key, const t_playback_stats& incoming, MergeType type) {
        Update(key, [&](t_playback_stats& record) { record = merged(record, incoming, type); });
    }

    /// Waits until nobody else writes. Called by the first write, and before by an operation that is sure to write.
    void begin();
    /// Makes the writes permanent and redraws what shows the changed keys. Nothing may be written afterwards.
    void finish();

    /// Whether something has been written that stays even without `finish`.
    [[nodiscard]] bool has_taken_effect() const noexcept { return own_turn_.owns_lock() && !written_.empty(); }
    /// Each key written, once, in the order of the first write.
    [[nodiscard]] std::vector<std::uint64_t> changed_keys() const { return written_.keys(); }

private:
    void put(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size);

    ostrevan::index_manager* const manager_ = opened_index();
    const std::string reason_;
    bool begun_ = false;
    ostrevan::index_transaction_ptr transaction_;
    std::unique_lock<std::mutex> own_turn_;  ///< held instead of a transaction
    record_map written_;
};

}  // namespace quorvel
