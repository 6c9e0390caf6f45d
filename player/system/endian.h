#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ostrevan::system {

/// A number of `size` bytes, most significant first; bytes that are missing count as 0.
constexpr std::uint64_t big_endian(std::string_view bytes, std::size_t at, std::size_t size) noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = at; i < at + size; ++i)
        number = number << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u);
    return number;
}

/// A number of `size` bytes, least significant first; bytes that are missing count as 0.
constexpr std::uint64_t little_endian(std::string_view bytes, std::size_t at, std::size_t size) noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = at + size; i-- > at;)
        number = number << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u);
    return number;
}

inline std::string as_big_endian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = size; i-- > 0; number >>= 8) bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
}

inline std::string as_little_endian(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i, number >>= 8) bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
}

}  // namespace ostrevan::system
