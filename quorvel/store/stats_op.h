#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "quorvel/store/index_writer.h"
#include "quorvel/store/merge.h"
#include "quorvel/store/record_map.h"

namespace quorvel {

/// One operation on any number of records: one transaction, begun with the first write, and one refresh. It reads what it
/// has written itself. Destroyed before `commit` it writes nothing. Used by one thread. [any-thread]
class StatsOp {
public:
    /// Without an index records read as the default one, and writes are skipped.
    [[nodiscard]] bool has_index() const noexcept { return writer_.has_index(); }

    /// Throws when the record cannot be read.
    [[nodiscard]] t_playback_stats GetByKey(std::uint64_t key) const;
    /// What one of the component's indexes held before this operation; nothing where there was no record. Throws likewise.
    [[nodiscard]] std::optional<t_playback_stats> Find(const nuv::guid& index, std::uint64_t key) const {
        return writer_.find(index, key);
    }

    /// Key 0 is skipped.
    void SetByKey(std::uint64_t key, const t_playback_stats& record);
    void Remove(const nuv::guid& index, std::uint64_t key);

    /// Writes only what `edit` changes. An edit that changes something outside a transaction is made again on what is read
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
        if (!writer_.begun() && !edited().second) return;
        writer_.begin();
        if (const auto [record, changed] = edited(); changed) SetByKey(key, record);
    }

    void MergeStats(std::uint64_t key, const t_playback_stats& incoming, MergeType type) {
        Update(key, [&](t_playback_stats& record) { record = merged(record, incoming, type); });
    }

    /// Begins the transaction now, for an operation that is sure to write.
    void begin() { writer_.begin(); }
    /// Makes the writes permanent. Nothing may be written afterwards.
    void commit() { writer_.commit(); }
    /// Whether something has been written that stays, although `commit` has not been called.
    [[nodiscard]] bool has_taken_effect() const noexcept { return writer_.writes_at_once() && !written_.entries().empty(); }
    [[nodiscard]] bool has_written(std::uint64_t key) const noexcept { return written_.find(key) != nullptr; }
    /// Each key written, once, in the order of the first write.
    [[nodiscard]] std::vector<std::uint64_t> changed_keys() const { return written_.keys(); }
    /// Redraws what shows the changed keys; call it after `commit`. From another thread than the main thread it is posted.
    void publish() const;

private:
    index_writer writer_;
    record_map written_;
};

}  // namespace quorvel
