#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ostrevan/hash_service.h"

namespace quorvel {

/// A digest of 32-bit little-endian units: characters in lower case, a terminator after every text, a separator after every
/// group. Units are gathered in place; the tags of nearly every track fit, and then the player digests them in one call.
class unit_digest {
public:
    explicit unit_digest(ostrevan::hash_service& hash) noexcept : hash_(hash) {}

    static constexpr std::uint32_t terminator = 0;
    static constexpr std::uint32_t separator = 0xFFFFFFFF;

    void feed(std::uint32_t unit) {
        if (used_ == units_.size()) flush();
        units_[used_++] = little_endian(unit);
    }
    /// UTF-8 text up to its end or its first invalid sequence, and the terminator.
    void feed_text(std::string_view text);
    /// The same without its leading zeros.
    void feed_number(std::string_view text);

    /// Both halves of the digest, little-endian, combined by exclusive or. Nothing may be fed afterwards.
    [[nodiscard]] std::uint64_t finish();

private:
    static constexpr std::uint32_t little_endian(std::uint32_t unit) noexcept {
        if constexpr (std::endian::native == std::endian::big)
            unit = unit >> 24 | (unit >> 8 & 0xFF00U) | (unit << 8 & 0xFF0000U) | unit << 24;
        return unit;
    }
    /// Feeds the characters before the first that is not ASCII, and returns how many. There must be room for the whole text.
    std::size_t feed_ascii(std::string_view text) noexcept;
    void flush();

    ostrevan::hash_service& hash_;
    ostrevan::service_ptr_t<ostrevan::hash_stream> stream_;
    std::size_t used_ = 0;
    std::array<std::uint32_t, 256> units_;
};

/// The text without its leading zeros; empty if there is nothing else.
[[nodiscard]] std::string_view without_leading_zeros(std::string_view text) noexcept;

}  // namespace quorvel
