#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// UTF-8 as it was first defined: sequences of up to six bytes, code points up to 0x7FFFFFFF, surrogates among them.
namespace Vek {

/// The length in bytes of the character that the text, which is not empty, begins with; 0 when it is not valid, over-long
/// or a zero byte.
[[nodiscard]] std::size_t utf8_length(std::string_view text) noexcept;

/// Appends one character; nothing for 0 and for what six bytes do not hold.
void append_utf8(std::string& out, std::uint32_t code_point);

}  // namespace Vek
