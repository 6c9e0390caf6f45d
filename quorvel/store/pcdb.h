#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "ostrevan/track.h"
#include "quorvel/store/merge.h"
#include "quorvel/store/record.h"

namespace quorvel {

/// The statistics database: the one place that reads and writes records, which the player keeps in its index. Without an
/// index (before start, after a failed registration) reads return default records and writes are skipped. Everything that
/// modifies is [main-thread], checked; it writes only what changes, in one transaction, and refreshes every changed key
/// once. What the index throws on a failed write comes through, and then nothing has been written.
class PCDB {
public:
    using Edit = std::function<void(t_playback_stats&)>;
    using TrackRecord = std::pair<ostrevan::metadb_handle_ptr, t_playback_stats>;

    /// [any-thread]
    [[nodiscard]] static t_playback_stats Get(const ostrevan::metadb_handle& track);
    [[nodiscard]] static t_playback_stats GetByKey(std::uint64_t key) noexcept;
    /// The lowest keys from `first` on that have a record, at most so many, in ascending order. [any-thread]
    [[nodiscard]] static std::vector<std::uint64_t> KeysFrom(std::uint64_t first, std::size_t at_most);

    /// `edit` may be called twice, and the second time with another record.
    static void Update(std::uint64_t key, const Edit& edit);
    /// Always writes. False if there is nowhere to count: the track has no key, or the player no index.
    static bool ItemPlayed(const ostrevan::metadb_handle& track);
    /// Clears everything but the date added.
    static void Reset(ostrevan::metadb_handle_list_cref tracks);
    /// `rating` as stored, or `rating_not_set`.
    static void SetRating(ostrevan::metadb_handle_list_cref tracks, std::uint32_t rating);
    /// Moves the rating by `step` stars, never below one; a track without a rating goes to 2 stars down, to 3 up.
    static void AdjustRating(ostrevan::metadb_handle_list_cref tracks, int step);
    /// Merges in the order given; a track that occurs twice is merged twice.
    static void MergeBatch(std::span<const TrackRecord> pairs, MergeType type);
    /// Stamps the date added where none is set. Returns at once; the work is done on the worker.
    static void OnAdded(ostrevan::metadb_handle_list_cref tracks);
    static void OnAdded(ostrevan::metadb_handle_list&& tracks);
    /// Replaces fields by what the file tags say, for the tracks whose tags the player holds.
    static void ImportFromTags(ostrevan::metadb_handle_list_cref tracks);

    /// Returns when every record is on disk, and throws if that fails. [any-thread]
    static void SaveNow();
};

}  // namespace quorvel
