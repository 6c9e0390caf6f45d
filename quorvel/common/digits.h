#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quorvel {

namespace detail {
/// "00" to "99", one after another.
inline constexpr auto two_digits = [] {
    std::array<char, 200> table{};
    for (std::size_t i = 0; i < 100; ++i) {
        table[2 * i] = static_cast<char>('0' + i / 10);
        table[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return table;
}();
}  // namespace detail

/// Writes a number below 100 with two digits and returns the end.
inline char* put_two_digits(char* out, std::uint32_t number) noexcept {
    std::memcpy(out, &detail::two_digits[2 * std::size_t{number}], 2);
    return out + 2;
}

/// Writes a number below 100,000,000 with eight digits and returns the end.
inline char* put_eight_digits(char* out, std::uint32_t number) noexcept {
    for (const std::uint32_t four : {number / 10'000, number % 10'000}) {
        out = put_two_digits(out, four / 100);
        out = put_two_digits(out, four % 100);
    }
    return out;
}

}  // namespace quorvel
