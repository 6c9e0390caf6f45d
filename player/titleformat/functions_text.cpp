#include <algorithm>
#include <array>

#include "player/titleformat/function.h"
#include "player/titleformat/unicode.h"

// Functions that change or combine texts. Lengths are in characters.
namespace ostrevan::titleformat {

namespace {

template <std::int32_t (*Map)(std::int32_t) noexcept>
bool mapped(call& c) {
    append_mapped(c.out, c.text(0), Map);
    return c.found();
}

bool capitalised(call& c) {
    bool inside_word = false;
    append_mapped(c.out, c.text(0), [&](std::int32_t code) {
        const std::int32_t shown = inside_word ? lower_of(code) : upper_of(code);
        constexpr std::int32_t apostrophe = 0x2019;
        inside_word = is_word(code) || (inside_word && (code == '\'' || code == apostrophe));
        return shown;
    });
    return c.found();
}

bool initials(call& c) {
    const std::string text = c.text(0);
    if (c.size() > 1 && count_characters(text) <= c.length(1)) {
        c.out += text;
        return c.found();
    }
    bool inside_word = false;
    for (std::string_view rest = text; !rest.empty();) {
        const character next = first_character(rest);
        const bool blank = is_blank(next.code);
        if (!blank && !inside_word) c.out += rest.substr(0, next.length);
        inside_word = !blank;
        rest.remove_prefix(next.length);
    }
    return c.found();
}

/// The padding of the first argument to the width of the second, made of the first character of the third, or blanks.
std::string filling(call& c, std::string_view text) {
    const std::size_t have = count_characters(text), width = c.length(1);
    const std::string given = c.size() > 2 ? c.text(2) : " ";
    const std::string_view one = first_characters(given, 1);
    std::string made;
    if (have < width) {
        made.reserve((width - have) * one.size());
        for (std::size_t i = have; i < width; ++i) made += one;
    }
    return made;
}

bool padded(call& c) {
    const std::string text = c.text(0);
    const std::string fill = filling(c, text);
    c.out.append(text).append(fill);
    return c.found();
}

bool padded_left(call& c) {
    const std::string text = c.text(0);
    const std::string fill = filling(c, text);
    c.out.append(fill).append(text);
    return c.found();
}

bool repeated(call& c) {
    const std::string text = c.text(0);
    if (text.empty()) return c.found();
    const std::size_t most = script::max_result / text.size() + 1;
    for (std::size_t left = std::min(c.length(1), most); left > 0; --left) c.out += text;
    return c.found();
}

bool replaced(call& c) {
    const std::string text = c.text(0), from = c.text(1), to = c.text(2);
    const std::size_t start = c.out.size();
    std::size_t done = 0;
    while (!from.empty() && c.out.size() - start <= script::max_result) {
        const auto next = text.find(from, done);
        if (next == std::string::npos) break;
        c.out.append(text, done, next - done).append(to);
        done = next + from.size();
    }
    c.out.append(text, done);
    return c.found();
}

bool character_of_code(call& c) {
    const auto code = c.number(0);
    if (code > 0 && code <= 0x10FFFF) append_character(c.out, static_cast<std::int32_t>(code));
    return c.found();
}

constexpr std::array text_table = std::to_array<function>({
    {"upper", 1, 1, mapped<upper_of>},
    {"lower", 1, 1, mapped<lower_of>},
    {"caps", 1, 1, capitalised},
    {"abbr", 1, 2, initials},
    {"pad", 2, 3, padded},
    {"pad_right", 2, 3, padded_left},
    {"repeat", 2, 2, repeated},
    {"replace", 3, 3, replaced},
    {"char", 1, 1, character_of_code},
});

}  // namespace

std::span<const function> text_functions() noexcept { return text_table; }

}  // namespace ostrevan::titleformat
