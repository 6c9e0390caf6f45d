#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "player/tags/file_stream.h"

namespace ostrevan::tags {

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

inline TagLib::ByteVector to_vector(std::string_view bytes) {
    return {bytes.data(), static_cast<unsigned int>(bytes.size())};
}

inline std::string to_text(const TagLib::ByteVector& bytes) { return {bytes.data(), bytes.size()}; }

/// Up to `size` bytes of the stream.
inline std::string read_bytes(TagLib::IOStream& stream, long at, std::uint64_t size) {
    stream.seek(at, TagLib::IOStream::Beginning);
    return to_text(stream.readBlock(static_cast<unsigned long>(size)));
}

/// Replaces `old_size` bytes; the bytes after them move.
inline void replace_bytes(TagLib::IOStream& stream, std::string_view bytes, long at, std::uint64_t old_size) {
    stream.insert(to_vector(bytes), static_cast<unsigned long>(at), static_cast<unsigned long>(old_size));
}

}  // namespace ostrevan::tags
