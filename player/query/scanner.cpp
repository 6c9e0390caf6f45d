#include "player/query/scanner.h"

#include <algorithm>

#include "nuv/text.h"
#include "player/query/ends_value.h"
#include "player/query/query.h"
#include "player/titleformat/integer.h"

namespace ostrevan::query {

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Position of a LIMIT and its number at the end of a text, else of the end.
std::size_t limit_at_end(std::string_view text) {
    for (auto at = text.find_last_not_of("0123456789"); at != std::string_view::npos && at + 1 < text.size();) {
        const auto word_end = text.find_last_not_of(blanks, at) + 1;
        if (word_end == at + 1 || word_end < 5 || !nuv::equal_ascii_nocase(text.substr(word_end - 5, 5), "LIMIT")) break;
        if (word_end > 5 && blanks.find(text[word_end - 6]) == std::string_view::npos) break;
        return word_end - 5;
    }
    return text.size();
}

/// Turns doubled quotes into one.
std::string unescaped(std::string_view inside) {
    std::string text;
    for (std::size_t i = 0; i < inside.size(); ++i) {
        text += inside[i];
        if (inside[i] == '"') ++i;
    }
    return text;
}

/// Maps a position in the result of `unescaped` back to the quoted text.
std::size_t escaped_position(std::string_view inside, std::size_t position) {
    std::size_t extra = 0;
    for (std::size_t i = 0; i < position && i + extra < inside.size(); ++i)
        if (inside[i + extra] == '"') ++extra;
    return position + extra;
}

}  // namespace

void scanner::fail(const std::string& reason, std::size_t position) const { throw query_error(reason, source_, position); }

std::size_t scanner::position() {
    position_ = std::min(source_.find_first_not_of(blanks, position_), source_.size());
    return position_;
}

bool scanner::take(char c) {
    if (next() != c) return false;
    ++position_;
    return true;
}

piece scanner::word() {
    const auto start = position();
    const auto end = std::min(source_.find_first_of(" \t\r\n()", start), source_.size());
    return {source_.substr(start, end - start), start};
}

bool scanner::take_word(std::string_view keyword) {
    const piece found = word();
    if (!nuv::equal_ascii_nocase(found.text, keyword)) return false;
    skip(found);
    return true;
}

piece scanner::quoted() {
    const auto start = position();
    for (std::size_t at = start + 1; at < source_.size(); ++at) {
        if (source_[at] != '"') continue;
        if (source_.substr(at, 2) == "\"\"") {
            ++at;
            continue;
        }
        position_ = at + 1;
        return {source_.substr(start + 1, at - start - 1), start + 1};
    }
    fail("this quote is never closed", start);
}

std::string scanner::value(std::string_view what) {
    if (next() == '"') return unescaped(quoted().text);

    const auto start = position();
    auto end = start;
    std::size_t parentheses = 0;
    for (piece next_word = word(); !at_end(); next_word = word()) {
        if (ends_value(*this)) break;
        if (next_word.text.empty()) {
            if (next() == ')' && parentheses == 0) break;
            parentheses = next() == '(' ? parentheses + 1 : parentheses - 1;
            next_word.text = source_.substr(position_, 1);
        }
        skip(next_word);
        end = position_;
    }
    if (end == start) fail("expected " + std::string(what), start);
    return std::string(source_.substr(start, end - start));
}

std::vector<std::string> scanner::search_words() {
    std::vector<std::string> words;
    std::size_t parentheses = 0;
    while (!at_end() && !ends_value(*this)) {
        if (next() == ')' && parentheses == 0) break;
        if (next() == '"') words.push_back(unescaped(quoted().text));
        else if (take('(')) ++parentheses;
        else if (take(')')) --parentheses;
        else words.emplace_back(word().text), skip(word());
    }
    return words;
}

std::optional<std::size_t> scanner::limit() {
    if (!take_word("LIMIT")) return std::nullopt;
    const piece number = word();
    const bool is_number = !number.text.empty() && number.text.find_first_not_of("0123456789") == std::string_view::npos;
    const auto value = is_number ? titleformat::leading_integer(number.text) : std::nullopt;
    if (value.value_or(0) < 1) fail("expected a number from 1", number.position);
    skip(number);
    return static_cast<std::size_t>(*value);
}

titleformat::script scanner::compile(std::string_view text, std::size_t start, std::string_view escaped) const {
    try {
        auto script = titleformat::compile(text);
        if (!script.reads_fields()) fail("this script shows no field; a field is written %artist%", start);
        return script;
    } catch (const titleformat::script_error& error) {
        fail(error.reason(), start + escaped_position(escaped, error.position()));
    }
}

titleformat::script scanner::quoted_script() {
    const piece inside = quoted();
    return compile(unescaped(inside.text), inside.position, inside.text);
}

titleformat::script scanner::field() {
    const auto start = position();
    const auto end = source_.find('%', start + 1);
    if (end == std::string_view::npos) fail("this '%' is never closed", start);
    if (end == start + 1) fail("expected the name of a field between the percent signs", start);
    position_ = end + 1;
    return titleformat::compile(source_.substr(start, end + 1 - start));
}

titleformat::script scanner::field_named(std::string_view name) {
    return titleformat::compile('%' + std::string(name) + '%');
}

titleformat::script scanner::script_to_end() {
    if (at_end()) fail("expected a field or a script to sort by");
    if (next() == '"') return quoted_script();
    std::string_view rest = source_.substr(position());
    rest = rest.substr(0, rest.find_last_not_of(blanks) + 1);
    const auto start = position_;
    rest = rest.substr(0, limit_at_end(rest));
    rest = rest.substr(0, rest.find_last_not_of(blanks) + 1);
    if (rest.empty()) fail("expected a field or a script to sort by");
    position_ = start + rest.size();
    if (rest.find_first_of("%$") == std::string_view::npos) return field_named(rest);
    return compile(rest, start, {});
}

}  // namespace ostrevan::query
