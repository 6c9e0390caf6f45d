#include "quorvel/store/unit_digest.h"

#include <algorithm>
#include <bit>

#include "ostrevan/text_helpers.h"

namespace quorvel {
namespace {

/// A character of two or more bytes and its length in bytes, which is 0 if it is not valid.
struct decoded {
    std::uint32_t code_point;
    std::size_t length;
};

/// Sequences of up to six bytes, each of the shortest form.
decoded decode_sequence(std::string_view text) noexcept {
    constexpr std::array<std::uint32_t, 7> smallest{0, 0, 0x80, 0x800, 0x10000, 0x200000, 0x4000000};
    const auto lead = static_cast<unsigned char>(text[0]);
    const auto length = static_cast<std::size_t>(std::countl_one(lead));
    if (length < 2 || length > 6 || length > text.size()) return {0, 0};
    std::uint32_t code_point = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0U) != 0x80) return {0, 0};
        code_point = code_point << 6 | (next & 0x3FU);
    }
    return code_point < smallest[length] ? decoded{0, 0} : decoded{code_point, length};
}

std::uint64_t little_endian_at(const ostrevan::hash_digest& digest, std::size_t at) noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = 8; i-- > 0;) number = number << 8 | digest[at + i];
    return number;
}

}  // namespace

void unit_digest::feed_text(std::string_view text) {
    while (!text.empty()) {
        if (used_ == units_.size()) flush();
        const std::size_t ascii = feed_ascii(text.substr(0, units_.size() - used_));
        text.remove_prefix(ascii);
        if (text.empty() || static_cast<unsigned char>(text[0]) < 0x80) continue;
        const auto [code_point, length] = decode_sequence(text);
        if (length == 0) break;
        feed(ostrevan::uCharLower(code_point));
        text.remove_prefix(length);
    }
    feed(terminator);
}

std::size_t unit_digest::feed_ascii(std::string_view text) noexcept {
    std::uint32_t* const out = &units_[used_];
    std::size_t count = 0;
    for (; count < text.size(); ++count) {
        const auto byte = static_cast<unsigned char>(text[count]);
        if (byte >= 0x80) break;
        out[count] = little_endian(ostrevan::uCharLower(byte));
    }
    used_ += count;
    return count;
}

void unit_digest::feed_number(std::string_view text) { feed_text(without_leading_zeros(text)); }

void unit_digest::flush() {
    if (!stream_) stream_ = hash_.open();
    stream_->update(units_.data(), used_ * sizeof units_[0]);
    used_ = 0;
}

std::uint64_t unit_digest::finish() {
    ostrevan::hash_digest digest;
    if (stream_) {
        flush();
        digest = stream_->finish();
    } else {
        digest = hash_.digest(units_.data(), used_ * sizeof units_[0]);
    }
    return little_endian_at(digest, 0) ^ little_endian_at(digest, 8);
}

std::string_view without_leading_zeros(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    return text;
}

}  // namespace quorvel
