#include "quorvel/xml/utf8.h"

#include <array>
#include <bit>

namespace Vek {
namespace {

/// The first code point that does not fit a sequence of fewer bytes, by length.
constexpr std::array<std::uint32_t, 8> first_of_length{0, 0, 0x80, 0x800, 0x10000, 0x200000, 0x4000000, 0x80000000};
constexpr std::size_t longest = 6;

}  // namespace

std::size_t utf8_length(std::string_view text) noexcept {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return lead != 0 ? 1 : 0;
    const auto length = static_cast<std::size_t>(std::countl_one(lead));
    if (length < 2 || length > longest || length > text.size()) return 0;
    std::uint32_t code_point = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0U) != 0x80) return 0;
        code_point = code_point << 6 | (next & 0x3FU);
    }
    return code_point < first_of_length[length] ? 0 : length;
}

void append_utf8(std::string& out, std::uint32_t code_point) {
    if (code_point == 0 || code_point >= first_of_length[longest + 1]) return;
    if (code_point < 0x80) {
        out.push_back(static_cast<char>(code_point));
        return;
    }
    std::size_t length = 2;
    while (code_point >= first_of_length[length + 1]) ++length;
    out.push_back(static_cast<char>((0xFF00U >> length & 0xFFU) | code_point >> (6 * (length - 1))));
    for (std::size_t left = length - 1; left-- > 0;)
        out.push_back(static_cast<char>(0x80U | (code_point >> (6 * left) & 0x3FU)));
}

}  // namespace Vek
