#include "player/library/cue_text.h"

#include <cstdint>

namespace ostrevan::library {
namespace {

using namespace std::string_view_literals;

void append_utf8(std::string& out, std::uint32_t code) {
    const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

std::string from_utf16(std::string_view bytes, bool is_big_endian) {
    const auto unit_at = [&](std::size_t at) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<std::uint32_t>(is_big_endian ? first << 8 | second : second << 8 | first);
    };
    std::string out;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        std::uint32_t code = unit_at(at);
        if (code - 0xD800 < 0x400 && at + 3 < bytes.size() && unit_at(at + 2) - 0xDC00 < 0x400) {
            code = 0x10000 + ((code - 0xD800) << 10) + (unit_at(at + 2) - 0xDC00);
            at += 2;
        } else if (code - 0xD800 < 0x800) {
            code = 0xFFFD;
        }
        append_utf8(out, code);
    }
    return out;
}

/// Length of the sequence that a leading byte promises, 0 when it cannot lead.
std::size_t sequence_length(unsigned char lead) noexcept {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool is_utf8(std::string_view text) noexcept {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequence_length(static_cast<unsigned char>(text[at]));
        if (length == 0 || length > text.size() - at) return false;
        for (std::size_t i = 1; i < length; ++i)
            if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80) return false;
        at += length;
    }
    return true;
}

}  // namespace

std::string cue_text(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE"sv)) return from_utf16(bytes.substr(2), false);
    if (bytes.starts_with("\xFE\xFF"sv)) return from_utf16(bytes.substr(2), true);
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) bytes.remove_prefix(3);
    if (is_utf8(bytes)) return std::string(bytes);
    std::string out;
    for (const char each : bytes) append_utf8(out, static_cast<unsigned char>(each));
    return out;
}

}  // namespace ostrevan::library
