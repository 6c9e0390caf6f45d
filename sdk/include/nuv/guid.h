#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nuv {

/// A 128-bit identifier in its usual binary order: one 32-bit and two 16-bit fields, then eight bytes.
struct guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    auto operator<=>(const guid&) const = default;
};

/// Reads 36 characters grouped 8-4-4-4-12, with or without surrounding braces, digits in either case.
constexpr std::optional<guid> parse_guid(std::string_view text) noexcept {
    if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
    if (text.size() != 36) return std::nullopt;

    std::array<std::uint8_t, 16> bytes{};
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (c != '-') return std::nullopt;
            continue;
        }
        int value = 0;
        if (c >= '0' && c <= '9') value = c - '0';
        else if (c >= 'a' && c <= 'f') value = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F') value = c - 'A' + 10;
        else return std::nullopt;
        bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] << 4 | value);
        ++digits;
    }

    guid result;
    result.data1 = static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
                   static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
    result.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    result.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    for (std::size_t i = 0; i < 8; ++i) result.data4[i] = bytes[8 + i];
    return result;
}

/// 36 characters, upper-case hexadecimal, grouped 8-4-4-4-12, without braces.
inline std::string guid_text(const guid& value) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(36);
    const auto append = [&](std::uint32_t number, int count) {
        for (int shift = (count - 1) * 4; shift >= 0; shift -= 4) text += digits[number >> shift & 15U];
    };
    append(value.data1, 8);
    text += '-';
    append(value.data2, 4);
    text += '-';
    append(value.data3, 4);
    for (std::size_t i = 0; i < 8; ++i) {
        if (i == 0 || i == 2) text += '-';
        append(value.data4[i], 2);
    }
    return text;
}

/// `guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}")`, checked when the program is compiled.
consteval guid guid_of(std::string_view text) {
    const auto parsed = parse_guid(text);
    if (!parsed) throw std::invalid_argument("not a GUID");
    return *parsed;
}

}  // namespace nuv

template <>
struct std::hash<nuv::guid> {
    std::size_t operator()(const nuv::guid& value) const noexcept {
        std::size_t mixed = value.data1 * 0x9E3779B97F4A7C15ULL;
        mixed ^= static_cast<std::size_t>(value.data2) << 16 | value.data3;
        for (const auto byte : value.data4) mixed = mixed * 1099511628211ULL ^ byte;
        return mixed;
    }
};
