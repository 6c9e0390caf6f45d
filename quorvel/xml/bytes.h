#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "quorvel/xml/xml_parser.h"

/// Bytes as the reader sees them. Blanks are all bytes up to 0x20.
namespace Vek {

[[nodiscard]] constexpr bool is_blank(char byte) noexcept { return static_cast<unsigned char>(byte) <= 0x20; }

[[nodiscard]] constexpr std::string_view without_leading_blanks(std::string_view text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && is_blank(text[count])) ++count;
    text.remove_prefix(count);
    return text;
}

[[nodiscard]] constexpr std::string_view without_trailing_blanks(std::string_view text) noexcept {
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

[[nodiscard]] constexpr char folded(char byte) noexcept {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

[[nodiscard]] constexpr bool equal_without_case(std::string_view one, std::string_view other) noexcept {
    return std::ranges::equal(one, other, {}, folded, folded);
}

/// Returns the position, which must have been found. Throws `xmlParser::error` if not.
[[nodiscard]] inline std::size_t required(std::size_t position) {
    if (position == std::string_view::npos) throw xmlParser::error();
    return position;
}

}  // namespace Vek
