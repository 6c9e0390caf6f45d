#include "player/tags/ogg_pages.h"

#include <algorithm>
#include <array>

#include "player/tags/bytes.h"

namespace ostrevan::tags {
namespace {

constexpr std::string_view capture = "OggS";
constexpr std::size_t fixed_size = 27;
constexpr std::size_t checksum_at = 22;
constexpr long search_step = 4096;

/// CRC-32 by the polynomial 04C11DB7, most significant bit first, without the usual inversions.
constexpr std::array<std::uint32_t, 256> checksums_of_bytes = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t sum = byte << 24;
        for (int bit = 0; bit < 8; ++bit) sum = sum << 1 ^ (sum >> 31 != 0 ? 0x04C11DB7u : 0u);
        table[byte] = sum;
    }
    return table;
}();

std::uint32_t continue_checksum(std::uint32_t sum, std::string_view bytes) noexcept {
    for (const char byte : bytes) sum = sum << 8 ^ checksums_of_bytes[sum >> 24 ^ static_cast<unsigned char>(byte)];
    return sum;
}

std::uint32_t checksum_of(std::string_view header, std::string_view body) noexcept {
    std::uint32_t sum = continue_checksum(0, header.substr(0, checksum_at));
    sum = continue_checksum(sum, std::string_view("\0\0\0\0", 4));
    return continue_checksum(continue_checksum(sum, header.substr(checksum_at + 4)), body);
}

std::optional<ogg_page> page_at(file_stream& stream, long at) {
    ogg_page page{.at = at, .body_size = 0, .header = read_bytes(stream, at, fixed_size)};
    if (page.header.size() < fixed_size || !page.header.starts_with(capture)) return {};
    page.header += read_bytes(stream, at + static_cast<long>(fixed_size), static_cast<unsigned char>(page.header[26]));
    for (const char size : page.segments()) page.body_size += static_cast<unsigned char>(size);
    if (page.end() > stream.length()) return {};
    return page;
}

}  // namespace

unsigned ogg_page::flags() const noexcept { return static_cast<unsigned char>(header[5]); }
std::int64_t ogg_page::position() const noexcept { return static_cast<std::int64_t>(little_endian(header, 6, 8)); }
std::uint32_t ogg_page::serial() const noexcept { return static_cast<std::uint32_t>(little_endian(header, 14, 4)); }
std::uint32_t ogg_page::number() const noexcept { return static_cast<std::uint32_t>(little_endian(header, 18, 4)); }
std::string_view ogg_page::segments() const noexcept { return std::string_view(header).substr(fixed_size); }

std::optional<ogg_page> page_from(file_stream& stream, long at) {
    while (at + static_cast<long>(fixed_size) <= stream.length()) {
        if (auto page = page_at(stream, at)) return page;
        const std::string part = read_bytes(stream, at + 1, static_cast<std::uint64_t>(search_step));
        const auto found = part.find(capture);
        const auto passed = found != part.npos ? found : part.size() - std::min(part.size() - 1, capture.size() - 1);
        at += 1 + static_cast<long>(passed);
    }
    return {};
}

bool is_intact(const ogg_page& page, std::string_view body) noexcept {
    return checksum_of(page.header, body) == little_endian(page.header, checksum_at, 4);
}

std::string page_header(const ogg_page_fields& fields, std::string_view segments, std::string_view body) {
    std::string header = std::string(capture) + '\0' + static_cast<char>(fields.flags) +
                         as_little_endian(static_cast<std::uint64_t>(fields.position), 8) +
                         as_little_endian(fields.serial, 4) + as_little_endian(fields.number, 4) + std::string(4, '\0') +
                         static_cast<char>(segments.size()) + std::string(segments);
    return header.replace(checksum_at, 4, as_little_endian(checksum_of(header, body), 4));
}

}  // namespace ostrevan::tags
