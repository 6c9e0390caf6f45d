#pragma once

#include <string>
#include <string_view>

namespace Vek {

/// The text with `"&'<>` replaced by entities, for attribute values and element text; up to its terminating zero.
[[nodiscard]] std::string escapeText(const char* text);
/// The same, appended to `out`.
void appendEscaped(std::string& out, std::string_view text);

}  // namespace Vek
