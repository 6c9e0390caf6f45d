#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace ostrevan::titleformat {

/// The integer at the start of a text: blanks, a sign, digits; the rest is ignored ("3/12" is 3). Saturates at 64 bits.
/// Empty when there is no digit in its place.
[[nodiscard]] std::optional<std::int64_t> leading_integer(std::string_view text) noexcept;

}  // namespace ostrevan::titleformat
