#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ostrevan::tags {

/// A process, told apart from a later one with the same number by the time it started.
struct process_identity {
    pid_t number = 0;
    /// Clock ticks since the system started; 0 where it is not known.
    std::uint64_t started = 0;
};

/// A name that no other copy of this process has: ".ostrevan-PROCESS-STARTED-COUNTER.EXTENSION", numbers in hexadecimal.
std::string next_copy_name(std::string_view original);

/// Who made a copy of that name; nothing when it is no such name.
std::optional<process_identity> maker_of_copy(std::string_view name) noexcept;

/// Removes the copies in a folder whose makers died before they were done; returns how many. Leaves alone what is locked,
/// made by a living process or named otherwise. Errors count as nothing to remove.
std::size_t remove_stale_copies(const std::string& folder) noexcept;

}  // namespace ostrevan::tags
