#include "player/tags/utf8.h"

#include <utf8proc.h>

#include "player/tags/bytes.h"

namespace ostrevan::tags {
namespace {

bool is_utf8(std::string_view text) noexcept {
    while (!text.empty()) {
        utf8proc_int32_t code = 0;
        const auto size = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                           static_cast<utf8proc_ssize_t>(text.size()), &code);
        if (size <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(size));
    }
    return true;
}

void append_code_point(std::string& text, std::uint64_t code) {
    utf8proc_uint8_t bytes[4];
    const auto size = utf8proc_encode_char(static_cast<utf8proc_int32_t>(code), bytes);
    text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
}

}  // namespace

std::string utf8_or_latin1(std::string_view text) {
    if (is_utf8(text)) return std::string(text);
    std::string converted;
    for (const char each : text) append_code_point(converted, static_cast<unsigned char>(each));
    return converted;
}

std::string utf8_of_utf16(std::string_view bytes, std::endian order) {
    const auto unit_at = [&](std::size_t at) {
        return order == std::endian::big ? big_endian(bytes, at, 2) : little_endian(bytes, at, 2);
    };
    std::string text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        auto code = unit_at(at);
        const bool is_pair = code - 0xD800 < 0x400 && at + 3 < bytes.size() && unit_at(at + 2) - 0xDC00 < 0x400;
        if (is_pair) code = 0x10000 + ((code - 0xD800) << 10) + (unit_at(at += 2) - 0xDC00);
        append_code_point(text, !is_pair && code - 0xD800 < 0x800 ? 0xFFFD : code);
    }
    return text;
}

}  // namespace ostrevan::tags
