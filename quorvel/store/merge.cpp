#include "quorvel/store/merge.h"

#include <algorithm>

namespace quorvel {
namespace {

/// 0 is no time.
std::uint64_t earliest(std::uint64_t a, std::uint64_t b) noexcept { return a == 0 || b == 0 ? a + b : std::min(a, b); }

std::uint32_t merged_rating(std::uint32_t stored, std::uint32_t incoming) noexcept {
    if (stored == rating_not_set) return incoming;
    if (incoming == rating_not_set) return stored;
    return (stored + incoming) >> 1;
}

}  // namespace

t_playback_stats merged(const t_playback_stats& stored, const t_playback_stats& incoming, MergeType type) noexcept {
    t_playback_stats result = incoming;
    if (type != MergeType::Overwrite) {
        result.play_count = type == MergeType::MergeSum ? stored.play_count + incoming.play_count
                                                        : std::max(stored.play_count, incoming.play_count);
        result.first_played = earliest(stored.first_played, incoming.first_played);
        result.last_played = std::max(stored.last_played, incoming.last_played);
        result.added = earliest(stored.added, incoming.added);
        result.rating = merged_rating(stored.rating, incoming.rating);
    }
    result.trailing = stored.trailing;
    return result;
}

}  // namespace quorvel
