#include "player/titleformat/excerpt.h"

#include <algorithm>

#include "player/titleformat/unicode.h"

namespace ostrevan::titleformat {

namespace {

constexpr std::size_t characters_around = 50;
constexpr std::string_view indent = "\n  ";
constexpr std::string_view cut = "...";

/// Start of the character up to `characters_around` characters before a place.
std::size_t start_before(std::string_view text, std::size_t position) {
    for (std::size_t steps = 0; steps < characters_around && position > 0; ++steps) {
        do --position;
        while (position > 0 && (static_cast<unsigned char>(text[position]) & 0xC0U) == 0x80U);
    }
    return position;
}

/// Appends text safe for a terminal and returns the columns it takes.
std::size_t append_printable(std::string& out, std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        const character next = first_character(text);
        const bool control = next.code >= 0 && (next.code < ' ' || next.code == 0x7F);
        if (next.code == character::malformed) out += '?';
        else if (control) out += ' ';
        else out += text.substr(0, next.length);
        columns += control || next.code == character::malformed ? 1 : columns_of(next.code);
        text.remove_prefix(next.length);
    }
    return columns;
}

}  // namespace

std::string point_at(std::string_view text, std::size_t position) {
    position = std::min(position, text.size());
    const std::size_t begin = start_before(text, position);
    const std::string_view rest = text.substr(position);
    const std::string_view shown = first_characters(rest, characters_around);

    std::string out(indent);
    std::size_t column = 0;
    if (begin > 0) column += append_printable(out, cut);
    column += append_printable(out, text.substr(begin, position - begin));
    append_printable(out, shown);
    if (shown.size() < rest.size()) out += cut;
    out += indent;
    out.append(column, ' ');
    return out += '^';
}

}  // namespace ostrevan::titleformat
