#include "quorvel/interchange/import_numbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

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
    const std::pair<const char*, const char*> long_numbers[] = {
        {"", "0"},
        {"007", "7"},
        {"18446744073709551615", "18446744073709551615"},
        {"000018446744073709551615", "18446744073709551615"},
        {"18446744073709551616", "Overflow"},
        {"99999999999999999999x", "Overflow"},  // before the letter
        {"1844674407370955161x6", "Invalid parameters"},
    };
    for (const auto& [text, expected] : long_numbers) EXPECT_EQ(parsed<std::uint64_t>(text), expected) << text;
    for (const char* text : {"-1", "+1", " 1", "1 ", "1.0", "0x1", "a"})
        EXPECT_EQ(parsed<std::uint64_t>(text), "Invalid parameters") << text;
    EXPECT_EQ(parsed<std::uint32_t>("4294967295"), "4294967295");
    EXPECT_EQ(parsed<std::uint32_t>("4294967296"), "Overflow");

    const std::pair<const char*, const char*> keys[] = {
        {"00000000000abCDe", "703710"},    {"0000ffffffffffffffff", "18446744073709551615"},
        {"10000000000000000", "Overflow"}, {"12345678901234567g", "Overflow"},
        {"0x12", "Invalid parameters"},    {"g", "Invalid parameters"},
    };
    for (const auto& [text, expected] : keys) EXPECT_EQ(parsed<std::uint64_t>(text, 16), expected) << text;
}

}  // namespace
