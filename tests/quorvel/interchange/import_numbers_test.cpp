#include "quorvel/interchange/import_numbers.h"

#include <gtest/gtest.h>

namespace {

template <typename T>
std::string parsed(std::string_view text, int base = 10) {
    try {
        return std::to_string(quorvel::parse_number<T>(text, base));
    } catch (const std::exception& e) {
        return e.what();
    }
}

TEST(import_numbers, are_digits_that_fit) {
    const char* const max = "18446744073709551615";
    const struct {
        const char *text, *decimal, *hexadecimal;
    } rows[] = {
        {"", "0", "0"},
        {"18446744073709551615", max, "Overflow"},
        {"000018446744073709551615", max, "Overflow"},
        {"18446744073709551616", "Overflow", "Overflow"},
        {"99999999999999999999x", "Overflow", "Overflow"},  // before the letter
        {"1844674407370955161x6", "Invalid parameters", "Overflow"},
        {"00000000000abCDe", "Invalid parameters", "703710"},
        {"0000ffffffffffffffff", "Invalid parameters", max},
        {"12345678901234567g", "Invalid parameters", "Overflow"},
    };
    for (const auto& [text, decimal, hexadecimal] : rows) {
        EXPECT_EQ(parsed<std::uint64_t>(text), decimal) << text;
        EXPECT_EQ(parsed<std::uint64_t>(text, 16), hexadecimal) << text;
    }
    for (const char* text : {"-1", "+1", " 1", "1 ", "1.0", "0x1", "g"})
        for (const int base : {10, 16}) EXPECT_EQ(parsed<std::uint64_t>(text, base), "Invalid parameters") << text;
    EXPECT_EQ(parsed<std::uint32_t>("4294967295"), "4294967295");
    EXPECT_EQ(parsed<std::uint32_t>("4294967296"), "Overflow");
}

}  // namespace
