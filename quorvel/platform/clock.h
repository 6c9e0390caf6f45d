#pragma once

#include <cstdint>

namespace quorvel {

/// Units of a time value in a second, and the moment 1970-01-01 00:00:00 UTC as a time value.
inline constexpr std::uint64_t filetime_per_second = 10'000'000;
inline constexpr std::uint64_t filetime_of_1970 = 116'444'736'000'000'000;

/// The system clock: 100 ns since 1601-01-01 00:00:00 UTC. [any-thread]
[[nodiscard]] std::uint64_t filetime_now() noexcept;

}  // namespace quorvel
