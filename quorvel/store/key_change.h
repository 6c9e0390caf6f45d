#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "ostrevan/tag_edit.h"

namespace quorvel {

/// A track whose statistics have to follow it from one key to another.
struct key_change {
    std::uint64_t from;
    std::uint64_t to;
    bool operator==(const key_change&) const = default;
};

/// What the edits moved, in their order. Where the file said something else than the player knew, that key counts as one to
/// come from, too. [any-thread]
[[nodiscard]] std::vector<key_change> key_changes(const nuv::list_base_const_t<ostrevan::tag_edit>& edits);

/// Merges the record of each key into that of the other with `MergeMax`. The old record stays, so that an edit back finds
/// it, and counts never add up twice. Throws when that cannot be done; a player with transactions has none of it then.
/// [worker]
void follow_key_changes(std::span<const key_change> changes);

}  // namespace quorvel
