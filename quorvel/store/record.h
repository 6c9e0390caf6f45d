#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace quorvel {

/// The rating of a track without one. Others go from 0 to 255.
inline constexpr std::uint32_t rating_not_set = 0xFFFFFFFF;

/// The statistics of one track. Times count 100 ns since 1601-01-01 UTC; 0 means not set.
struct t_playback_stats {
    std::uint64_t play_count = 0;
    std::uint64_t first_played = 0;
    std::uint64_t last_played = 0;
    std::uint64_t added = 0;
    std::uint32_t rating = rating_not_set;
    /// The last bytes of the stored form. They mean nothing and are kept as they were found.
    std::uint32_t trailing = 0;

    friend constexpr bool operator==(const t_playback_stats& a, const t_playback_stats& b) noexcept {
        return a.play_count == b.play_count && a.first_played == b.first_played && a.last_played == b.last_played &&
               a.added == b.added && a.rating == b.rating;
    }
};

/// Nobody plays a track before it is there: the date added is that of the first play, if known, or earlier.
constexpr void limit_date_added(t_playback_stats& record) noexcept {
    if (record.first_played != 0 && (record.added == 0 || record.added > record.first_played))
        record.added = record.first_played;
}

/// The stored form: the fields in their order, little-endian, without gaps.
inline constexpr std::size_t record_blob_size = 40;
using record_blob = std::array<std::byte, record_blob_size>;

namespace detail {

static_assert(sizeof(t_playback_stats) == record_blob_size);

template <typename T>
constexpr T little_endian(T value) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        return value;
    } else {
        auto bytes = std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
        std::ranges::reverse(bytes);
        return std::bit_cast<T>(bytes);
    }
}

/// Swaps the bytes of every field where the machine is not little-endian. Its own inverse.
constexpr t_playback_stats little_endian(const t_playback_stats& record) noexcept {
    return {little_endian(record.play_count), little_endian(record.first_played), little_endian(record.last_played),
            little_endian(record.added),      little_endian(record.rating),       little_endian(record.trailing)};
}

}  // namespace detail

[[nodiscard]] inline record_blob encode_record(const t_playback_stats& record) noexcept {
    return std::bit_cast<record_blob>(detail::little_endian(record));
}

[[nodiscard]] inline t_playback_stats decode_record(const record_blob& blob) noexcept {
    return detail::little_endian(std::bit_cast<t_playback_stats>(blob));
}

/// Stars of a rating that is set, for fields, menus and steps: 5 for everything beyond the scale.
[[nodiscard]] constexpr std::uint32_t stars_of(std::uint32_t rating) noexcept {
    return rating >= 256 ? 5 : std::min(rating * 6 >> 8, 5U);
}

/// Stars of a rating that is set, as they are written into file tags: the product wraps at 32 bits, so that a rating far
/// beyond the scale can give less than 5.
[[nodiscard]] constexpr std::uint32_t stars_of_wrapping(std::uint32_t rating) noexcept {
    return std::min(rating * 6U >> 8, 5U);
}

/// The middle of the band of ratings that show this many stars: 21, 63, 106, 149, 191, 234 for 0 to 5.
[[nodiscard]] constexpr std::uint32_t rating_of_stars(std::uint32_t stars) noexcept { return stars * 256 / 6 + 21; }

}  // namespace quorvel
