#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The system's clipboard, for bytes in private formats that are known by name: that of Windows, elsewhere the player's.
/// [main-thread]
namespace quorvel::clipboard {

/// Whether it holds anything in that format. The bytes are not read.
[[nodiscard]] bool has_format(const char* format);

/// Replaces what the clipboard holds. Throws `exception_system_error`, `std::bad_alloc`, or what the player's clipboard
/// throws.
void set(const char* format, std::span<const std::uint8_t> bytes);

/// A copy of what the clipboard holds in that format; on Windows it may be longer than what was set. Empty if there is none
/// or it cannot be read.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> get(const char* format);

}  // namespace quorvel::clipboard
