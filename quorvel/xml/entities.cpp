#include "quorvel/xml/entities.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

#include "quorvel/xml/bytes.h"
#include "quorvel/xml/utf8.h"

namespace Vek {
namespace {

struct named_entity {
    std::string_view name;
    std::uint32_t code_point;
};
constexpr std::array<named_entity, 6> entities{
    {{"amp", 0x26}, {"lt", 0x3C}, {"gt", 0x3E}, {"apos", 0x27}, {"quot", 0x22}, {"nbsp", 0xA0}}};

/// The number after `&`: `#` and decimal or `#x` and hexadecimal digits; decimal digits need no `#`.
std::optional<std::uint32_t> numeric_reference(std::string_view body) {
    int base = 10;
    if (body.starts_with('#')) {
        body.remove_prefix(1);
        if (body.starts_with('x') || body.starts_with('X')) {
            body.remove_prefix(1);
            base = 16;
        }
    }
    std::uint32_t value = 0;
    const char* const end = body.data() + body.size();
    const auto [stop, failure] = std::from_chars(body.data(), end, value, base);
    if (failure != std::errc() || stop != end) return std::nullopt;
    return value;
}

/// The code point of the reference with this body. A number is read only as far as its digits go, so that many `&` before
/// one distant `;` take time in proportion to the text.
std::optional<std::uint32_t> reference(std::string_view body) {
    if (body.starts_with('#') || (!body.empty() && body[0] >= '0' && body[0] <= '9')) return numeric_reference(body);
    for (const auto& [name, code_point] : entities)
        if (name.size() == body.size() && equal_without_case(name, body)) return code_point;
    return std::nullopt;
}

std::size_t plain_length(std::string_view text) noexcept {
    std::size_t length = 0;
    while (length < text.size() && is_plain(text[length])) ++length;
    return length;
}

}  // namespace

std::string decodeEntities(const char* text, std::size_t length) {
    const std::string_view all(text, length);
    std::string out;
    out.reserve(length);
    std::size_t semicolon = 0;
    for (std::size_t at = 0; at < all.size();) {
        if (all[at] == '&') {
            if (semicolon <= at) semicolon = std::min(all.find(';', at), all.size());
            if (semicolon < all.size()) {
                if (const auto code_point = reference(all.substr(at + 1, semicolon - at - 1))) {
                    append_utf8(out, *code_point);
                    at = semicolon + 1;
                    continue;
                }
            }
        }
        const std::string_view rest = all.substr(at);
        const std::size_t count = std::max(plain_length(rest), utf8_length(rest));
        if (count == 0) throw xmlParser::error();
        out.append(rest, 0, count);
        at += count;
    }
    return out;
}

bool is_plain(std::string_view text) noexcept {
    // A loop without an early exit lets the compiler handle many bytes at a time.
    unsigned char others = 0;
    for (const char byte : text) others |= static_cast<unsigned char>(!is_plain(byte));
    return others == 0;
}

std::string_view decoded(std::string_view text, std::string& storage) {
    if (is_plain(text)) return text;
    storage = decodeEntities(text.data(), text.size());
    return storage;
}

}  // namespace Vek
