#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nuv {

constexpr char ascii_lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

/// Equal when the bytes are, ASCII letters taken without regard to case.
constexpr bool equal_ascii_nocase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (ascii_lower(a[i]) != ascii_lower(b[i])) return false;
    return true;
}

/// What follows the last "\", "/", "|" or ":" of a path; the whole path when there is none.
constexpr std::string_view file_name_of(std::string_view path) noexcept {
    const auto separator = path.find_last_of("\\/|:");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

}  // namespace nuv
