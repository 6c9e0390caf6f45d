#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "ostrevan/index.h"

namespace quorvel {

/// Changes of records that the player makes itself.
class record_editing : public ostrevan::index_record_editing {
public:
    /// As `follow_key_changes` merges two records. A blob that is no record counts as the default one.
    [[nodiscard]] std::vector<std::byte> merged(std::span<const std::byte> into, std::span<const std::byte> from) override;
    /// File tags follow if the user wants them to.
    void on_records_changed(ostrevan::metadb_handle_list_cref tracks) override;
};

}  // namespace quorvel
