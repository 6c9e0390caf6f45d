#include "player/query/ends_value.h"

#include <algorithm>

#include "nuv/text.h"
#include "player/query/operators.h"

namespace ostrevan::query {
namespace {

constexpr std::string_view digits = "0123456789";

/// Takes `%field%` or a quoted text.
bool take_delimited(scanner& next) {
    const auto rest = next.rest();
    if (!rest.starts_with('%') && !rest.starts_with('"')) return false;
    const auto end = rest.find(rest.front(), 1);
    if (end == std::string_view::npos) return false;
    next.skip({rest.substr(0, end + 1), next.position()});
    return true;
}

/// SORT in capitals, or before BY; otherwise it is part of a title.
bool sort_follows(scanner next) {
    if (next.word().text == "SORT") return true;
    if (!next.take_word("SORT")) return false;
    if (!next.take_word("ASCENDING")) next.take_word("DESCENDING");
    return next.take_word("BY");
}

/// LIMIT with a number at the end, or before SORT, where it is a mistake to report.
bool limit_follows(scanner next) {
    const auto rest = next.rest();
    const auto end = std::min(rest.find_first_not_of(digits), rest.size());
    if (end == 0) return false;
    next.skip({rest.substr(0, end), next.position()});
    return next.at_end() || sort_follows(next);
}

}  // namespace

bool comparison_follows(scanner next) {
    while (next.take('(') || next.take_word("NOT")) {
    }
    while (take_delimited(next))
        if (next.next() != '"') return find_operator(next.word().text) != nullptr;
    piece word = next.word();
    for (bool is_first = true; !word.text.empty(); is_first = false) {
        if (find_operator(word.text) != nullptr) return !is_first;
        if (nuv::equal_ascii_nocase(word.text, "and") || nuv::equal_ascii_nocase(word.text, "or")) return false;
        next.skip(word);
        word = next.word();
    }
    return false;
}

bool ends_value(scanner next) {
    const piece word = next.word();
    if (word.text == "AND" || word.text == "OR" || sort_follows(next)) return true;
    if (next.take_word("AND") || next.take_word("OR")) return comparison_follows(next);
    return next.take_word("LIMIT") && limit_follows(next);
}

}  // namespace ostrevan::query
