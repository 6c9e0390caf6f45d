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
    /// Clock ticks since the system started; 0 where it is not to be had.
    std::uint64_t started = 0;

    bool operator==(const process_identity&) const = default;
};

/// @returns nothing when there is no such process.
std::optional<process_identity> identity_of(pid_t number);

/// A name no other copy of this process has: ".ostrevan-PROCESS-STARTED-COUNTER.EXTENSION", numbers in hexadecimal.
std::string next_copy_name(std::string_view original);

/// Who made a copy of that name; nothing when it is not such a name.
std::optional<process_identity> maker_of_copy(std::string_view name) noexcept;

}  // namespace ostrevan::tags
