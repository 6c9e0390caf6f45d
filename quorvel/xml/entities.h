#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Vek {

/// The text with entity and character references replaced; anything else stays as it is. Takes time in proportion to the
/// length. Throws `xmlParser::error` for a zero byte and for bytes that are not UTF-8.
[[nodiscard]] std::string decodeEntities(const char* text, std::size_t length);

/// A plain byte begins no reference and is valid by itself: ASCII except the zero byte and `&`.
[[nodiscard]] constexpr bool is_plain(char byte) noexcept { return (static_cast<signed char>(byte) > 0) & (byte != '&'); }
/// Whether all bytes of a text are plain. Such a text decodes to itself.
[[nodiscard]] bool is_plain(std::string_view text) noexcept;
/// The text decoded: the text itself where it is plain, otherwise `storage` filled with the result.
[[nodiscard]] std::string_view decoded(std::string_view text, std::string& storage);

}  // namespace Vek
