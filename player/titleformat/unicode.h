#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ostrevan::titleformat {

/// One code point of a UTF-8 text. A malformed byte is a character without a code.
struct character {
    static constexpr std::int32_t malformed = -1;

    std::int32_t code = malformed;
    std::size_t length = 1;
};

/// `text` must not be empty.
[[nodiscard]] character first_character(std::string_view text) noexcept;

[[nodiscard]] std::size_t count_characters(std::string_view text) noexcept;
/// The first `count` characters, or the whole text when it has fewer.
[[nodiscard]] std::string_view first_characters(std::string_view text, std::size_t count) noexcept;

/// Appends nothing for a number that is not a Unicode scalar value.
void append_character(std::string& out, std::int32_t code);

/// Maps one character to one, as Unicode's simple mappings.
[[nodiscard]] std::int32_t upper_of(std::int32_t code) noexcept;
[[nodiscard]] std::int32_t lower_of(std::int32_t code) noexcept;
/// Letters that differ only in case map to the same code.
[[nodiscard]] std::int32_t fold_of(std::int32_t code) noexcept;

[[nodiscard]] bool is_blank(std::int32_t code) noexcept;
/// Letters, digits and the marks that belong to them.
[[nodiscard]] bool is_word(std::int32_t code) noexcept;
/// Columns on a terminal: 0, 1 or 2.
[[nodiscard]] std::size_t columns_of(std::int32_t code) noexcept;

/// Appends each character mapped; malformed bytes are kept.
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
