#include <array>

#include "player/titleformat/function.h"
#include "player/titleformat/unicode.h"

// A condition is whether its argument was found; the text does not matter. A function that selects a branch returns that
// branch and whether it was found. One that only tests returns no text.
namespace ostrevan::titleformat {

namespace {

/// The argument at `then` or the next one, which is optional.
bool branch(call& c, bool condition, std::size_t then) {
    const std::size_t index = condition ? then : then + 1;
    return index < c.size() && c.append(index);
}

bool if_found(call& c) { return branch(c, c.test(0), 1); }

bool first_found(call& c) {
    const std::size_t start = c.out.size();
    for (std::size_t i = 0; i + 1 < c.size(); ++i) {
        if (c.append(i)) return true;
        c.out.resize(start);
    }
    return c.append(c.size() - 1);
}

bool if_equal(call& c) {
    const auto left = c.number(0);
    return branch(c, left == c.number(1), 2);
}

bool if_greater(call& c) {
    const auto left = c.number(0);
    return branch(c, left > c.number(1), 2);
}

bool if_longer(call& c) {
    const auto characters = static_cast<std::int64_t>(count_characters(c.text(0)));
    return branch(c, characters > c.number(1), 2);
}

bool negation(call& c) { return !c.test(0); }

bool all_found(call& c) {
    for (std::size_t i = 0; i < c.size(); ++i)
        if (!c.test(i)) return false;
    return true;
}

bool any_found(call& c) {
    for (std::size_t i = 0; i < c.size(); ++i)
        if (c.test(i)) return true;
    return false;
}

bool odd_number_found(call& c) {
    bool odd = false;
    for (std::size_t i = 0; i < c.size(); ++i) odd ^= c.test(i);
    return odd;
}

bool same_text(call& c) {
    const auto left = c.text(0);
    return left == c.text(1);
}

bool same_text_nocase(call& c) {
    std::string left, right;
    append_folded(left, c.text(0));
    append_folded(right, c.text(1));
    return left == right;
}

constexpr std::array logic_table = std::to_array<function>({
    {"if", 2, 3, if_found},
    {"if2", 2, 2, first_found},
    {"if3", 2, function::any_number, first_found},
    {"ifequal", 3, 4, if_equal},
    {"ifgreater", 3, 4, if_greater},
    {"iflonger", 3, 4, if_longer},
    {"not", 1, 1, negation},
    {"and", 2, function::any_number, all_found},
    {"or", 2, function::any_number, any_found},
    {"xor", 2, function::any_number, odd_number_found},
    {"strcmp", 2, 2, same_text},
    {"stricmp", 2, 2, same_text_nocase},
});

}  // namespace

std::span<const function> logic_functions() noexcept { return logic_table; }

}  // namespace ostrevan::titleformat
