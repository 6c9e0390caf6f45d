#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// UTF-8 as it was first defined: sequences of up to six bytes, code points up to 0x7FFFFFFF, surrogates among them.
namespace Vek {

/// The length in bytes of the first character of a text that is not empty; 0 if it is not valid, over-long or a zero byte.
[[nodiscard]] std::size_t utf8_length(std::string_view text) noexcept;

/// Appends one character; nothing for 0 and for numbers that do not fit six bytes.
void append_utf8(std::string& out, std::uint32_t code_point);

}  // namespace Vek
