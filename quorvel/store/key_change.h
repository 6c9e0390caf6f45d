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

/// The changes of keys that follow from the edits, in their order. If the file said something else than the player knew,
/// that key is an old one, too. [any-thread]
[[nodiscard]] std::vector<key_change> key_changes(const nuv::list_base_const_t<ostrevan::tag_edit>& edits);

/// Merges the record of each old key into that of the new one with `MergeMax`. The old record stays, so that an edit back
/// finds it, and counts never add up twice. Throws on failure; with transactions nothing has been changed then. [worker]
void follow_key_changes(std::span<const key_change> changes);

}  // namespace quorvel
