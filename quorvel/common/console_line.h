#pragma once

#include <string>

namespace quorvel {

/// Writes a line to the player's console, if it has one. Never throws. [any-thread]
void print_to_console(const std::string& line) noexcept;

}  // namespace quorvel
