#include "quorvel/xml/escape.h"

#include <array>

namespace Vek {
namespace {

constexpr std::string_view escaped_bytes = "\"&'<>";
constexpr std::array<std::string_view, escaped_bytes.size()> escapes{"&quot;", "&amp;", "&apos;", "&lt;", "&gt;"};

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
    for (;;) {
        const std::size_t plain = text.find_first_of(escaped_bytes);
        out.append(text.substr(0, plain));
        if (plain == std::string_view::npos) return;
        out.append(escapes[escaped_bytes.find(text[plain])]);
        text.remove_prefix(plain + 1);
    }
}

std::string escapeText(const char* text) {
    std::string out;
    appendEscaped(out, text);
    return out;
}

}  // namespace Vek
