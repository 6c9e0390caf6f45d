#pragma once

#include "quorvel/store/record.h"

namespace quorvel {

/// How an incoming record is combined with the stored one.
enum class MergeType : std::uint32_t { Overwrite = 0, MergeMax = 1, MergeSum = 2 };

/// `Overwrite` takes the incoming fields. The others take the earliest first play and date added, the latest last play, the
/// average of two ratings, and the larger play count or the sum. Trailing bytes stay those of `stored`.
[[nodiscard]] t_playback_stats merged(const t_playback_stats& stored, const t_playback_stats& incoming,
                                      MergeType type) noexcept;

}  // namespace quorvel
