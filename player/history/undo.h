#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/index/index_store.h"

namespace ostrevan::history {

/// What taking an act back has done.
struct undone {
    std::vector<index::index_changes> restored{};  ///< from what they were to what they are
    std::vector<index::index_changes> left{};      ///< have changed since, and stay as they are; the changes of the act
};

/// Restores the records that an act changed, in one transaction, and the successors of their keys. What has changed since is
/// left alone. Undoing is an act too, which can be undone. Waits for the disk; throws std::runtime_error.
undone take_back(index::index_store& records, const index::act& wanted);

/// The acts that `undo` without a number takes back: the latest ones that neither take something back nor have been taken
/// back, the newest first.
std::vector<index::act> next_to_undo(index::index_store& records, std::size_t count);
/// The act that `redo` takes back: the latest of the undos that follow the last other act.
std::optional<index::act> next_to_redo(index::index_store& records);

}  // namespace ostrevan::history
