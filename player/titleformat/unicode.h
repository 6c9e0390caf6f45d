#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ostrevan::titleformat {

/// One Unicode code point in UTF-8 text. A byte that belongs to no valid one is a character of its own, without a code.
struct character {
    static constexpr std::int32_t malformed = -1;

    std::int32_t code = malformed;
    std::size_t length = 1;
};

/// `text` is not empty.
[[nodiscard]] character first_character(std::string_view text) noexcept;

[[nodiscard]] std::size_t count_characters(std::string_view text) noexcept;
/// The first `count` characters, or the whole text when it has fewer.
[[nodiscard]] std::string_view first_characters(std::string_view text, std::size_t count) noexcept;

/// Appends nothing for a number that is no Unicode scalar value.
void append_character(std::string& out, std::int32_t code);

/// One character to one character, as in Unicode's simple mappings.
[[nodiscard]] std::int32_t upper_of(std::int32_t code) noexcept;
[[nodiscard]] std::int32_t lower_of(std::int32_t code) noexcept;
/// Letters that differ in nothing but case become the same one.
[[nodiscard]] std::int32_t fold_of(std::int32_t code) noexcept;

[[nodiscard]] bool is_blank(std::int32_t code) noexcept;
/// Letters, digits and the marks that belong to them.
[[nodiscard]] bool is_word(std::int32_t code) noexcept;
/// Columns on a terminal: 0, 1 or 2.
[[nodiscard]] std::size_t columns_of(std::int32_t code) noexcept;

/// Appends each character through `map`; malformed bytes stay as they are.
template <typename Map>
void append_mapped(std::string& out, std::string_view text, Map map) {
    while (!text.empty()) {
        const character next = first_character(text);
        if (next.code == character::malformed) out += text.front();
        else append_character(out, map(next.code));
        text.remove_prefix(next.length);
    }
}

void append_folded(std::string& out, std::string_view text);

}  // namespace ostrevan::titleformat
