#include "player/query/operators.h"

#include <algorithm>
#include <array>
#include <utility>

#include "nuv/text.h"
#include "player/titleformat/integer.h"

namespace ostrevan::query {

namespace {

using titleformat::script;

struct named_unit {
    std::string_view name;
    time_unit unit;
};
constexpr std::array<named_unit, 6> units = {{{"MINUTE", {.seconds = 60}},
                                              {"HOUR", {.seconds = 3600}},
                                              {"DAY", {.seconds = 86400}},
                                              {"WEEK", {.seconds = 7 * 86400}},
                                              {"MONTH", {.months = 1}},
                                              {"YEAR", {.months = 12}}}};

bool is_digits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

template <text_test Test>
condition_ptr text_operator(script left, scanner& right) {
    return compare_text(std::move(left), Test, right.value("a text"));
}

template <number_test Test>
condition_ptr number_operator(script left, scanner& right) {
    constexpr std::string_view wanted = "a whole number";
    const auto start = right.position();
    const std::string text = right.value(wanted);
    const bool sign = text.starts_with('-') || text.starts_with('+');
    if (!is_digits(std::string_view(text).substr(sign ? 1 : 0))) right.fail("expected " + std::string(wanted), start);
    return compare_number(std::move(left), Test, titleformat::leading_integer(text).value_or(0));
}

template <time_test Test>
condition_ptr time_operator(script left, scanner& right) {
    constexpr std::string_view wanted = "a time such as 2024, 2024-05, 2024-05-31 or 2024-05-31 18:30:00";
    const auto start = right.position();
    const auto time = parse_period(right.value(wanted));
    if (!time) right.fail("expected " + std::string(wanted), start);
    return compare_time(std::move(left), Test, *time);
}

time_unit take_unit(scanner& right) {
    piece word = right.word();
    std::string_view name = word.text;
    if (name.ends_with('S') || name.ends_with('s')) name.remove_suffix(1);
    const auto found = std::ranges::find_if(units, [&](const auto& u) { return nuv::equal_ascii_nocase(u.name, name); });
    if (found == units.end()) right.fail("expected MINUTES, HOURS, DAYS, WEEKS, MONTHS or YEARS");
    right.skip(word);
    return found->unit;
}

condition_ptr during_operator(script left, scanner& right) {
    if (!right.take_word("LAST")) return time_operator<time_test::during>(std::move(left), right);
    std::int64_t count = 1;
    if (const piece number = right.word(); is_digits(number.text)) {
        count = titleformat::leading_integer(number.text).value_or(0);
        if (count < 1 || count > max_units) right.fail("expected a number from 1 to " + std::to_string(max_units));
        right.skip(number);
    }
    return within_last(std::move(left), take_unit(right), count);
}

condition_ptr present_operator(script left, scanner&) { return present(std::move(left)); }
condition_ptr missing_operator(script left, scanner&) { return negation(present(std::move(left))); }

constexpr std::array<comparison, 11> operators = {{
    {"IS", text_operator<text_test::is>},
    {"HAS", text_operator<text_test::has>},
    {"GREATER", number_operator<number_test::greater>},
    {"LESS", number_operator<number_test::less>},
    {"EQUAL", number_operator<number_test::equal>},
    {"PRESENT", present_operator, true},
    {"MISSING", missing_operator, true},
    {"BEFORE", time_operator<time_test::before>},
    {"AFTER", time_operator<time_test::after>},
    {"SINCE", time_operator<time_test::since>},
    {"DURING", during_operator},
}};

}  // namespace

const comparison* find_operator(std::string_view word) noexcept {
    const auto found =
        std::ranges::find_if(operators, [&](const auto& each) { return nuv::equal_ascii_nocase(each.keyword, word); });
    return found == operators.end() ? nullptr : &*found;
}

}  // namespace ostrevan::query
