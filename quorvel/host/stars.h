#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quorvel {

namespace detail {
inline constexpr std::string_view star_ruler =
    "\u2605\u2605\u2605\u2605\u2605"
    "\u2606\u2606\u2606\u2606\u2606";
inline constexpr std::size_t glyph_size = 3;
}  // namespace detail

/// U+2605 for each star. `stars` is at most 5 here and below.
[[nodiscard]] constexpr std::string_view filled_stars(std::uint32_t stars) noexcept {
    return detail::star_ruler.substr(0, stars * detail::glyph_size);
}

/// The same followed by U+2606 for each star missing from five.
[[nodiscard]] constexpr std::string_view five_stars(std::uint32_t stars) noexcept {
    return detail::star_ruler.substr((5 - stars) * detail::glyph_size, 5 * detail::glyph_size);
}

}  // namespace quorvel
