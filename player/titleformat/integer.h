#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace ostrevan::titleformat {

/// The integer at the start of a text: blanks, a sign, digits; what follows is ignored ("3/12" is 3). A number beyond 64
/// bits becomes the nearest one that fits. Empty when there is no digit where the number should be.
[[nodiscard]] std::optional<std::int64_t> leading_integer(std::string_view text) noexcept;

}  // namespace ostrevan::titleformat
