#include <utility>

#include "nuv/text.h"
#include "player/query/condition.h"
#include "player/query/ends_value.h"
#include "player/query/operators.h"
#include "player/query/query.h"
#include "player/query/scanner.h"
#include "player/titleformat/excerpt.h"

namespace ostrevan::query {

namespace {

/// Bounds the stack of parsing, matching and destruction.
constexpr std::size_t max_depth = 200;

constexpr std::string_view operator_expected =
    "expected IS, HAS, GREATER, LESS, EQUAL, PRESENT, MISSING, BEFORE, AFTER, SINCE or DURING";
constexpr std::string_view condition_expected = "expected a condition, such as %artist% IS name";

class parser {
public:
    explicit parser(std::string_view source) noexcept : scan_(source) {}

    condition_ptr conditions() {
        const auto word = scan_.word().text;
        const bool joins = nuv::equal_ascii_nocase(word, "AND") || nuv::equal_ascii_nocase(word, "OR");
        return scan_.at_end() || (!joins && ends_value(scan_)) ? everything() : alternatives();
    }

    std::optional<sort_order> sort() {
        if (!scan_.take_word("SORT")) return std::nullopt;
        const bool descending = scan_.take_word("DESCENDING");
        if (!descending) scan_.take_word("ASCENDING");
        if (!scan_.take_word("BY")) scan_.fail(descending ? "expected BY" : "expected ASCENDING, DESCENDING or BY");
        const auto start = scan_.position();
        sort_order order{scan_.script_to_end(), descending};
        note_field(order.by, start);
        return order;
    }

    std::optional<std::size_t> limit() {
        const auto count = scan_.limit();
        if (count && !scan_.at_end()) scan_.fail("LIMIT comes last");
        if (!scan_.at_end())
            scan_.fail(scan_.next() == ')' ? "')' without '('" : "expected AND, OR, SORT, LIMIT or the end of the query");
        return count;
    }

    [[nodiscard]] std::vector<named_field> fields() { return std::move(fields_); }

private:
    condition_ptr alternatives() { return chain("OR", &parser::requirements, any_of); }
    condition_ptr requirements() { return chain("AND", &parser::single, all_of); }

    condition_ptr chain(std::string_view keyword, condition_ptr (parser::*part)(),
                        condition_ptr (*join)(std::vector<condition_ptr>)) {
        std::vector<condition_ptr> parts;
        do parts.push_back((this->*part)());
        while (scan_.take_word(keyword));
        return join(std::move(parts));
    }

    condition_ptr single() {
        const auto start = scan_.position();
        if (++depth_ > max_depth) scan_.fail("nested more than " + std::to_string(max_depth) + " deep");
        condition_ptr made;
        if (takes_not()) made = negation(single());
        else if (takes_all()) made = everything();
        else if (scan_.take('(')) {
            made = alternatives();
            if (!scan_.take(')'))
                scan_.fail(scan_.at_end() ? "this '(' is never closed" : "expected AND, OR or ')'",
                           scan_.at_end() ? start : scan_.position());
        } else made = test();
        --depth_;
        return made;
    }

    /// NOT in capitals, or before a comparison; otherwise it is part of a title.
    bool takes_not() {
        scanner next = scan_;
        const bool is_capital = next.word().text == "NOT";
        if (!next.take_word("NOT") || (!is_capital && !comparison_follows(next))) return false;
        scan_ = next;
        return true;
    }

    bool takes_all() {
        scanner next = scan_;
        const bool is_capital = next.word().text == "ALL";
        if (!next.take_word("ALL") || (!is_capital && !next.at_end() && next.next() != ')' && !ends_value(next)))
            return false;
        scan_ = next;
        return true;
    }

    /// A comparison or search words.
    condition_ptr test() {
        if (scan_.next() != '%' && scan_.next() != '$' && !comparison_follows(scan_)) return search();
        const auto start = scan_.position();
        auto left = left_side();
        const piece word = scan_.word();
        const comparison* const found = find_operator(word.text);
        if (found == nullptr) scan_.fail(std::string(operator_expected));
        if (!found->asks_for_presence) note_field(left, start);
        scan_.skip(word);
        return found->build(std::move(left), scan_);
    }

    condition_ptr search() {
        const auto start = scan_.position();
        const piece first = scan_.word();
        const auto* const misplaced = find_operator(first.text);
        auto words = scan_.search_words();
        if (words.empty() || (misplaced != nullptr && first.text == misplaced->keyword))
            scan_.fail(std::string(condition_expected), start);
        std::vector<condition_ptr> parts;
        for (const auto& word : words)
            if (words.size() == 1 || !nuv::equal_ascii_nocase(word, "and")) parts.push_back(mentions(word));
        return all_of(std::move(parts));
    }

    void note_field(const titleformat::script& script, std::size_t position) {
        if (const auto name = script.only_field()) fields_.push_back({std::string(*name), position});
    }

    titleformat::script left_side() {
        if (scan_.next() == '%') return scan_.field();
        if (scan_.next() == '"') return scan_.quoted_script();
        if (scan_.next() == '$') scan_.fail("a script stands in double quotes");
        return bare_field();
    }

    /// The words up to an operator.
    titleformat::script bare_field() {
        std::string name;
        for (piece next = scan_.word(); find_operator(next.text) == nullptr; next = scan_.word()) {
            name.append(name.empty() ? "" : " ").append(next.text);
            scan_.skip(next);
        }
        return scanner::field_named(name);
    }

    scanner scan_;
    std::size_t depth_ = 0;
    std::vector<named_field> fields_;
};

}  // namespace

query_error::query_error(const std::string& reason, std::string_view source, std::size_t position)
    : user_error(reason + titleformat::point_at(source, position)), position_(position) {}

query parse(std::string_view source) {
    parser reading(source);
    auto conditions = reading.conditions();
    auto sort = reading.sort();
    const auto limit = reading.limit();
    return {std::move(conditions), std::move(sort), limit, reading.fields()};
}

}  // namespace ostrevan::query
