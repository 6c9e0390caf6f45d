#include "player/titleformat/unicode.h"

#include <utf8proc.h>

#include <algorithm>

#include "nuv/text.h"

namespace ostrevan::titleformat {

namespace {
constexpr bool is_ascii(std::int32_t code) noexcept { return code >= 0 && code < 0x80; }
}  // namespace

character first_character(std::string_view text) noexcept {
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    if (bytes[0] < 0x80) return {bytes[0], 1};
    utf8proc_int32_t code = 0;
    const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &code);
    return length > 0 ? character{code, static_cast<std::size_t>(length)} : character{};
}

std::size_t count_characters(std::string_view text) noexcept {
    std::size_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(first_character(text).length);
    return count;
}

std::string_view first_characters(std::string_view text, std::size_t count) noexcept {
    std::size_t end = 0;
    for (; count > 0 && end < text.size(); --count) end += first_character(text.substr(end)).length;
    return text.substr(0, end);
}

void append_character(std::string& out, std::int32_t code) {
    if (is_ascii(code)) {
        out += static_cast<char>(code);
        return;
    }
    if (utf8proc_codepoint_valid(code) == 0) return;
    utf8proc_uint8_t bytes[4];
    const auto length = utf8proc_encode_char(code, bytes);
    out.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

std::int32_t upper_of(std::int32_t code) noexcept {
    if (is_ascii(code)) return code >= 'a' && code <= 'z' ? code - ('a' - 'A') : code;
    return utf8proc_toupper(code);
}

std::int32_t lower_of(std::int32_t code) noexcept {
    if (is_ascii(code)) return nuv::ascii_lower(static_cast<char>(code));
    return utf8proc_tolower(code);
}

std::int32_t fold_of(std::int32_t code) noexcept {
    // Folding by way of upper case unites letters that differ in lower case, such as the two small sigmas.
    return is_ascii(code) ? lower_of(code) : utf8proc_tolower(utf8proc_toupper(code));
}

bool is_blank(std::int32_t code) noexcept {
    if (is_ascii(code)) return code == ' ' || (code >= '\t' && code <= '\r');
    return utf8proc_category(code) == UTF8PROC_CATEGORY_ZS;
}

bool is_word(std::int32_t code) noexcept {
    const auto category = utf8proc_category(code);
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

std::size_t columns_of(std::int32_t code) noexcept {
    return is_ascii(code) ? 1 : static_cast<std::size_t>(utf8proc_charwidth(code));
}

void append_folded(std::string& out, std::string_view text) {
    while (!text.empty()) {
        // Takes runs of ASCII whole: searches and sorting fold every text of a library.
        const auto run_end = std::ranges::find_if(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
        const auto run = static_cast<std::size_t>(run_end - text.begin());
        const auto start = out.size();
        out += text.substr(0, run);
        for (auto i = start; i < out.size(); ++i) out[i] = nuv::ascii_lower(out[i]);
        text.remove_prefix(run);
        if (text.empty()) return;
        const std::size_t length = first_character(text).length;
        append_mapped(out, text.substr(0, length), fold_of);
        text.remove_prefix(length);
    }
}

}  // namespace ostrevan::titleformat
