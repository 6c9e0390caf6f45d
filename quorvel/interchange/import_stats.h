#pragma once

#include <cstdint>

#include "quorvel/interchange/export_fields.h"
#include "quorvel/store/record.h"
#include "quorvel/xml/attributes.h"

namespace quorvel {

/// What one element of a statistics file says of a track.
struct ImportedStats {
    t_playback_stats values;
    std::uint32_t present = 0;  ///< the `ExportFields` that it speaks of

    /// Replaces these fields, whatever they were, and leaves the others alone: nothing is merged.
    void replace_in(t_playback_stats& stored) const noexcept;
};

/// How ratings are written.
enum class rating_scale {
    stored,  ///< 0 to 255
    stars,   ///< 0 to 5
};

/// Reads the attributes of the fields wanted. Throws what `parse_number` throws, for the first one that is no number.
[[nodiscard]] ImportedStats read_stats(const Vek::xmlAttributes& attributes, std::uint32_t fields, rating_scale scale);

}  // namespace quorvel
