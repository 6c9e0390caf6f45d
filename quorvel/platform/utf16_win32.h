#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Text for the system's calls and back. What is not valid becomes U+FFFD. [any-thread]
[[nodiscard]] std::wstring to_utf16(std::string_view utf8);
[[nodiscard]] std::string to_utf8(std::wstring_view utf16);

}  // namespace quorvel
