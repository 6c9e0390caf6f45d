#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/titleformat/script.h"

namespace ostrevan::query {

/// A piece of the query and its position in bytes.
struct piece {
    std::string_view text;
    std::size_t position = 0;
};

/// Reads a query from left to right. Every function skips blanks first; failures throw `query_error` with the place.
class scanner {
public:
    explicit scanner(std::string_view source) noexcept : source_(source) {}
    [[nodiscard]] std::string_view rest() { return source_.substr(position()); }

    /// Position of the next piece, or of the end.
    [[nodiscard]] std::size_t position();
    [[nodiscard]] bool at_end() { return position() == source_.size(); }
    [[nodiscard]] char next() { return at_end() ? '\0' : source_[position_]; }

    /// Takes `c` if it is next.
    bool take(char c);
    /// Takes a keyword if it is next as a whole word, in any case.
    bool take_word(std::string_view keyword);
    /// The next word without taking it: up to a blank or a parenthesis. Empty at the end.
    [[nodiscard]] piece word();
    void skip(const piece& taken) noexcept { position_ = taken.position + taken.text.size(); }

    /// The right operand of a comparison: a text in double quotes, where "" is one quote, or everything up to a word that
    /// `ends_value`, an unmatched closing parenthesis, or the end. `what` names it in the message when it is missing.
    std::string value(std::string_view what);
    /// The words and quoted texts up to where `value` would end.
    std::vector<std::string> search_words();
    /// The next piece: a script in double quotes that reads some field.
    titleformat::script quoted_script();
    /// The next piece: `%field%`.
    titleformat::script field();
    /// The rest up to a LIMIT or the end: a script, quoted or not, or a field name.
    titleformat::script script_to_end();
    /// LIMIT and its number, if next.
    std::optional<std::size_t> limit();
    /// The script for one field.
    static titleformat::script field_named(std::string_view name);

    [[noreturn]] void fail(const std::string& reason, std::size_t position) const;
    [[noreturn]] void fail(const std::string& reason) { fail(reason, position()); }

private:
    /// The inside of a quoted text, still escaped.
    piece quoted();
    /// `text` starts at `start` in the query; `escaped` is its form there.
    titleformat::script compile(std::string_view text, std::size_t start, std::string_view escaped) const;

    std::string_view source_;
    std::size_t position_ = 0;
};

}  // namespace ostrevan::query
