#include <algorithm>
#include <array>
#include <utility>

#include "player/query/condition.h"
#include "player/query/operators.h"
#include "player/query/query.h"
#include "player/query/scanner.h"
#include "player/titleformat/excerpt.h"

namespace ostrevan::query {

namespace {

/// Keeps parsing, matching and destroying within a small stack.
constexpr std::size_t max_depth = 200;

constexpr std::string_view operator_expected =
    "expected IS, HAS, GREATER, LESS, EQUAL, PRESENT, MISSING, BEFORE, AFTER, SINCE or DURING, in capitals";
constexpr std::string_view condition_expected = "expected a condition, such as %artist% IS name";

class parser {
public:
    explicit parser(std::string_view source) noexcept : scan_(source) {}

    condition_ptr conditions() {
        if (scan_.at_end() || scan_.word().text == "SORT") return everything();
        return alternatives();
    }

    std::optional<sort_order> sort() {
        if (scan_.at_end()) return std::nullopt;
        if (!scan_.take_word("SORT"))
            scan_.fail(scan_.next() == ')' ? "')' without '('" : "expected AND, OR, SORT or the end of the query");
        const bool descending = scan_.take_word("DESCENDING");
        if (!descending) scan_.take_word("ASCENDING");
        if (!scan_.take_word("BY")) scan_.fail(descending ? "expected BY" : "expected ASCENDING, DESCENDING or BY");
        return sort_order{scan_.script_to_end(), descending};
    }

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
        if (scan_.take_word("NOT")) made = negation(single());
        else if (scan_.take_word("ALL")) made = everything();
        else if (scan_.take('(')) {
            made = alternatives();
            if (!scan_.take(')'))
                scan_.fail(scan_.at_end() ? "this '(' is never closed" : "expected AND, OR or ')'",
                           scan_.at_end() ? start : scan_.position());
        } else made = test();
        --depth_;
        return made;
    }

    condition_ptr test() {
        auto left = left_side();
        const piece word = scan_.word();
        const comparison* const found = find_operator(word.text);
        if (found == nullptr) scan_.fail(std::string(operator_expected));
        scan_.skip(word);
        return found->build(std::move(left), scan_);
    }

    titleformat::script left_side() {
        if (scan_.next() == '%') return scan_.field();
        if (scan_.next() == '"') return scan_.quoted_script();
        if (scan_.next() == '$') scan_.fail("a script stands in double quotes");
        return bare_field();
    }

    /// The words up to an operator.
    titleformat::script bare_field() {
        constexpr std::array<std::string_view, 4> no_names = {"AND", "OR", "SORT", ""};
        const piece first = scan_.word();
        if (std::ranges::find(no_names, first.text) != no_names.end() || find_operator(first.text) != nullptr)
            scan_.fail(std::string(condition_expected));
        scan_.skip(first);
        const auto behind_first = scan_.position();

        std::string name(first.text);
        for (piece next = scan_.word(); find_operator(next.text) == nullptr; next = scan_.word()) {
            if (std::ranges::find(no_names, next.text) != no_names.end())
                scan_.fail(std::string(operator_expected), behind_first);
            name.append(1, ' ').append(next.text);
            scan_.skip(next);
        }
        return scanner::field_named(name);
    }

    scanner scan_;
    std::size_t depth_ = 0;
};

}  // namespace

query_error::query_error(const std::string& reason, std::string_view source, std::size_t position)
    : std::runtime_error(reason + titleformat::point_at(source, position)), position_(position) {}

query parse(std::string_view source) {
    parser reading(source);
    auto conditions = reading.conditions();
    auto sort = reading.sort();
    return {std::move(conditions), std::move(sort)};
}

}  // namespace ostrevan::query
