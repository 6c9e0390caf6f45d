#pragma once

#include <string_view>

#include "player/tags/bytes.h"

namespace ostrevan::tags {

/// Identifiers of objects. The first four after the header's hold tags, some of them inside the extension.
namespace asf_id {
using namespace std::string_view_literals;
inline constexpr auto header = "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
inline constexpr auto description = "\x33\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
inline constexpr auto extended = "\x40\xA4\xD0\xD2\x07\xE3\xD2\x11\x97\xF0\x00\xA0\xC9\x5E\xA8\x50"sv;
inline constexpr auto metadata = "\xEA\xCB\xF8\xC5\xAF\x5B\x77\x48\x84\x67\xAA\x8C\x44\xFA\x4C\xCA"sv;
inline constexpr auto library = "\x94\x1C\x23\x44\x98\x94\xD1\x49\xA1\x41\x1D\x13\x4E\x45\x70\x54"sv;
inline constexpr auto extension = "\xB5\x03\xBF\x5F\x2E\xA9\xCF\x11\x8E\xE3\x00\xC0\x0C\x20\x53\x65"sv;
inline constexpr auto file_properties = "\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65"sv;
inline constexpr auto stream_properties = "\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65"sv;
}  // namespace asf_id

inline constexpr std::size_t asf_object_header_size = 24;
inline constexpr std::size_t asf_header_size = 30;
/// The fields of an extension before its own objects; the last four bytes are the size of these.
inline constexpr std::size_t asf_extension_prefix_size = 22;

/// The header object of a Windows Media file; empty when the file does not begin with one.
inline std::string asf_header_bytes(file_stream& stream) {
    const std::string head = read_bytes(stream, 0, asf_header_size);
    if (!head.starts_with(asf_id::header) || head.size() < asf_header_size) return {};
    const std::string header = read_bytes(stream, 0, little_endian(head, 16, 8));
    return header.size() < asf_header_size ? std::string() : header;
}

/// Calls with the identifier and the body of each object, up to one that is damaged.
template <class Call>
void for_each_asf_object(std::string_view bytes, Call call) {
    while (bytes.size() >= asf_object_header_size) {
        const auto size = little_endian(bytes, 16, 8);
        if (size < asf_object_header_size || size > bytes.size()) return;
        call(bytes.substr(0, 16), bytes.substr(asf_object_header_size, size - asf_object_header_size));
        bytes.remove_prefix(size);
    }
}

}  // namespace ostrevan::tags
