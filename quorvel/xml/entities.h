#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Vek {

/// The text with entity and character references replaced; what is no reference stays as it is. Takes time in proportion to
/// the length. Throws `xmlParser::error` for a zero byte and for bytes that are not UTF-8.
[[nodiscard]] std::string decodeEntities(const char* text, std::size_t length);

/// A plain byte is part of no reference and need not be checked: ASCII but the zero byte and `&`.
[[nodiscard]] constexpr bool is_plain(char byte) noexcept { return (static_cast<signed char>(byte) > 0) & (byte != '&'); }
/// Whether all bytes of a text are plain, so that it decodes to itself.
[[nodiscard]] bool is_plain(std::string_view text) noexcept;
/// The text decoded, without a copy where it is plain: the text itself, or `storage` filled with the result.
[[nodiscard]] std::string_view decoded(std::string_view text, std::string& storage);

/// The text with `"&'<>` replaced by entities, for attribute values and element text; up to its terminating zero.
[[nodiscard]] std::string escapeText(const char* text);
/// The same, appended to `out`.
void appendEscaped(std::string& out, std::string_view text);

}  // namespace Vek
