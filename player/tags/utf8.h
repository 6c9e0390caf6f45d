#pragma once

#include <bit>
#include <string>
#include <string_view>

namespace ostrevan::tags {

/// The text itself when it is UTF-8, else its bytes taken for Latin-1, which old programs wrote.
std::string utf8_or_latin1(std::string_view text);

/// A lone surrogate becomes U+FFFD; an odd byte at the end is left out.
std::string utf8_of_utf16(std::string_view bytes, std::endian order);

}  // namespace ostrevan::tags
