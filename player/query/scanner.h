#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/titleformat/script.h"

namespace ostrevan::query {

/// A piece of the query and where it starts, in bytes.
struct piece {
    std::string_view text;
    std::size_t position = 0;
};

/// Reads a query from left to right. Every function skips blanks first and throws `query_error` pointing into the query.
class scanner {
public:
    explicit scanner(std::string_view source) noexcept : source_(source) {}
    [[nodiscard]] std::string_view rest() { return source_.substr(position()); }

    /// Of the next piece, or the end.
    [[nodiscard]] std::size_t position();
    [[nodiscard]] bool at_end() { return position() == source_.size(); }
    [[nodiscard]] char next() { return at_end() ? '\0' : source_[position_]; }

    /// Takes `c` if it comes next.
    bool take(char c);
    /// Takes a keyword if it comes next as a whole word, in whatever case.
    bool take_word(std::string_view keyword);
    /// The next word without taking it: up to a blank or a parenthesis. Empty at the end.
    [[nodiscard]] piece word();
    void skip(const piece& taken) noexcept { position_ = taken.position + taken.text.size(); }

    /// The value on the right of a comparison: a text in double quotes, where "" is one quote, or everything up to a word
    /// that `ends_value`, a closing parenthesis without an opening one, or the end. `what` names it in the message when
    /// there is none.
    std::string value(std::string_view what);
    /// The words and the quoted texts up to the same places.
    std::vector<std::string> search_words();
    /// A script that reads some field, in double quotes, which must come next.
    titleformat::script quoted_script();
    /// `%field%`, which must come next.
    titleformat::script field();
    /// What remains, up to a LIMIT or the end: a script, quoted or not, or the plain name of a field.
    titleformat::script script_to_end();
    /// LIMIT and its number, if they come next.
    std::optional<std::size_t> limit();
    /// The script that shows one field.
    static titleformat::script field_named(std::string_view name);

    [[noreturn]] void fail(const std::string& reason, std::size_t position) const;
    [[noreturn]] void fail(const std::string& reason) { fail(reason, position()); }

private:
    /// The inside of a quoted text as it stands.
    piece quoted();
    /// `text` starts at `start` in the query; `escaped` is how it stands there when it is quoted.
    titleformat::script compile(std::string_view text, std::size_t start, std::string_view escaped) const;

    std::string_view source_;
    std::size_t position_ = 0;
};

}  // namespace ostrevan::query
