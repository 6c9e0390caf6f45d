#pragma once

#include <string_view>

#include "player/tags/bytes.h"

namespace ostrevan::tags {

inline constexpr std::size_t asf_object_header_size = 24;
inline constexpr std::size_t asf_header_size = 30;

/// The header object of a Windows Media file; empty when the file does not begin with one.
inline std::string asf_header_bytes(file_stream& stream) {
    constexpr std::string_view id{"\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C", 16};
    const std::string head = read_bytes(stream, 0, asf_header_size);
    if (!head.starts_with(id) || head.size() < asf_header_size) return {};
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
