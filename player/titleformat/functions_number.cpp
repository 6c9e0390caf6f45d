#include <algorithm>
#include <array>

#include "player/titleformat/function.h"

// Arithmetic on 64-bit integers, saturating.
namespace ostrevan::titleformat {

namespace {

using limits = std::numeric_limits<std::int64_t>;
using number_pair = std::int64_t (*)(std::int64_t, std::int64_t);

constexpr std::int64_t added(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return b < 0 ? limits::min() : limits::max();
}

constexpr std::int64_t subtracted(std::int64_t a, std::int64_t b) {
    std::int64_t difference = 0;
    if (!__builtin_sub_overflow(a, b, &difference)) return difference;
    return b > 0 ? limits::min() : limits::max();
}

constexpr std::int64_t multiplied(std::int64_t a, std::int64_t b) {
    std::int64_t product = 0;
    if (!__builtin_mul_overflow(a, b, &product)) return product;
    return (a < 0) != (b < 0) ? limits::min() : limits::max();
}

constexpr std::int64_t smaller(std::int64_t a, std::int64_t b) { return std::min(a, b); }
constexpr std::int64_t greater(std::int64_t a, std::int64_t b) { return std::max(a, b); }

template <number_pair Operation>
bool over_all(call& c) {
    std::int64_t value = c.number(0);
    for (std::size_t i = 1; i < c.size(); ++i) value = Operation(value, c.number(i));
    c.out += std::to_string(value);
    return c.found();
}

/// A division by zero is not found, so that its section disappears.
bool divide(call& c) {
    const auto dividend = c.number(0), divisor = c.number(1);
    if (divisor == 0) return false;
    c.out += std::to_string(divisor == -1 ? subtracted(0, dividend) : dividend / divisor);
    return c.found();
}

bool remainder(call& c) {
    const auto dividend = c.number(0), divisor = c.number(1);
    if (divisor == 0) return false;
    c.out += std::to_string(divisor == -1 ? 0 : dividend % divisor);
    return c.found();
}

bool zero_padded(call& c) {
    std::string digits = std::to_string(c.number(0));
    const auto width = c.length(1);
    if (digits.size() < width) digits.insert(digits.front() == '-' ? 1 : 0, width - digits.size(), '0');
    c.out += digits;
    return c.found();
}

constexpr std::array number_table = std::to_array<function>({
    {"add", 2, function::any_number, over_all<added>},
    {"sub", 2, function::any_number, over_all<subtracted>},
    {"mul", 2, function::any_number, over_all<multiplied>},
    {"div", 2, 2, divide},
    {"mod", 2, 2, remainder},
    {"min", 2, function::any_number, over_all<smaller>},
    {"max", 2, function::any_number, over_all<greater>},
    {"num", 2, 2, zero_padded},
});

}  // namespace

std::span<const function> number_functions() noexcept { return number_table; }

}  // namespace ostrevan::titleformat
