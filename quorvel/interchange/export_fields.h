#pragma once

#include <cstdint>

namespace quorvel {

/// Fields that an export, an import or a paste handles; a set of these bits.
enum ExportFields : std::uint32_t {
    export_play_count = 1,
    export_first_played = 2,
    export_last_played = 4,
    export_added = 8,
    export_rating = 16,
    export_all_fields = 31,
};

}  // namespace quorvel
