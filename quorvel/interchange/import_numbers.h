#pragma once

#include <charconv>
#include <concepts>
#include <string_view>
#include <system_error>

#include "nuv/exceptions.h"

namespace quorvel {

/// A number of the statistics file: digits and nothing else; an empty text is 0. Throws `nuv::exception_invalid_params` for
/// any other character, and `nuv::exception_overflow` when the digits before it do not fit already.
template <std::unsigned_integral T>
[[nodiscard]] T parse_number(std::string_view text, int base = 10) {
    T value = 0;
    if (text.empty()) return value;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value, base);
    if (error == std::errc::result_out_of_range) throw nuv::exception_overflow();
    if (error != std::errc() || end != last) throw nuv::exception_invalid_params();
    return value;
}

}  // namespace quorvel
