#include <algorithm>
#include <array>

#include "player/titleformat/function.h"
#include "player/titleformat/unicode.h"

// Functions for parts of a text. Positions and lengths are in characters.
namespace ostrevan::titleformat {

namespace {

bool character_count(call& c) {
    c.out += std::to_string(count_characters(c.text(0)));
    return c.found();
}

bool left_part(call& c) {
    const std::string text = c.text(0);
    c.out += first_characters(text, c.length(1));
    return c.found();
}

bool right_part(call& c) {
    const std::string text = c.text(0);
    const std::size_t have = count_characters(text), wanted = c.length(1);
    c.out += wanted < have ? text.substr(first_characters(text, have - wanted).size()) : text;
    return c.found();
}

/// Both ends count from 1 and are included.
bool part_between(call& c) {
    const std::string text = c.text(0);
    const std::size_t from = std::max<std::size_t>(c.length(1), 1), to = c.length(2);
    if (to < from) return c.found();
    std::string_view rest = text;
    rest.remove_prefix(first_characters(rest, from - 1).size());
    c.out += first_characters(rest, to - from + 1);
    return c.found();
}

bool inserted(call& c) {
    const std::string text = c.text(0), addition = c.text(1);
    const std::string_view head = first_characters(text, c.length(2));
    c.out.append(head).append(addition).append(text, head.size());
    return c.found();
}

bool trimmed(call& c) {
    const std::string text = c.text(0);
    std::size_t first = text.size(), last = 0;
    for (std::size_t at = 0; at < text.size();) {
        const character next = first_character(std::string_view(text).substr(at));
        if (!is_blank(next.code)) {
            first = std::min(first, at);
            last = at + next.length;
        }
        at += next.length;
    }
    if (first < last) c.out.append(text, first, last - first);
    return c.found();
}

constexpr std::array part_table = std::to_array<function>({
    {"len", 1, 1, character_count},
    {"left", 2, 2, left_part},
    {"right", 2, 2, right_part},
    {"substr", 3, 3, part_between},
    {"insert", 3, 3, inserted},
    {"trim", 1, 1, trimmed},
});

}  // namespace

std::span<const function> part_functions() noexcept { return part_table; }

}  // namespace ostrevan::titleformat
