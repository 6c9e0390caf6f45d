#include "player/terminal/terminal_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "player/titleformat/unicode.h"

namespace ostrevan::terminal {
namespace {

struct range {
    std::int32_t first;
    std::int32_t last;
};
constexpr range obeyed[] = {
    {0x00, 0x08},     {0x0B, 0x1F},     {0x7F, 0x9F},      // controls
    {0x061C, 0x061C}, {0x200E, 0x200F}, {0x202A, 0x202E},  // direction marks and embeddings
    {0x2066, 0x2069}, {0x2028, 0x2029}, {0xFFF9, 0xFFFB},  // isolates, separators, annotations
};

bool is_obeyed(std::int32_t code) {
    for (const auto& [first, last] : obeyed)
        if (code >= first && code <= last) return true;
    return false;
}

}  // namespace

std::string shown_on_terminal(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    const auto is_special = [](char c) { return (c < ' ' && c != '\n' && c != '\t') || c > '~'; };
    for (;;) {
        const auto plain = static_cast<std::size_t>(std::ranges::find_if(text, is_special) - text.begin());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) return out;
        const auto next = titleformat::first_character(text);
        if (next.code == titleformat::character::malformed) {
            out += "\uFFFD";
        } else if (is_obeyed(next.code)) {
            std::array<char, 16> name;
            out.append(name.data(), static_cast<std::size_t>(std::snprintf(name.data(), name.size(), "<U+%04X>",
                                                                           static_cast<unsigned>(next.code))));
        } else {
            out += text.substr(0, next.length);
        }
        text.remove_prefix(next.length);
    }
}

std::string shown_in_one_line(std::string_view text) {
    std::string line(text);
    std::ranges::replace_if(
        line, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return shown_on_terminal(line);
}

}  // namespace ostrevan::terminal
