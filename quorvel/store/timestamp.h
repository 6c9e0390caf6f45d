#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "nuv/exceptions.h"
#include "quorvel/platform/clock.h"
#include "quorvel/platform/time_zone.h"

namespace quorvel {

/// The text cannot be read as a time.
class exception_time_error : public nuv::fixed_exception {
public:
    exception_time_error() noexcept : fixed_exception("Invalid timestamp") {}
};

/// The text of a time, kept in place: "2024-03-05 07:08:09" or "<invalid timestamp>".
class timestamp_text {
public:
    /// Years above 9999 have five digits.
    static constexpr std::size_t capacity = 20;

    timestamp_text(std::uint64_t time, const time_zone& zone) noexcept;

    [[nodiscard]] std::string_view view() const noexcept { return {characters_.data(), length_}; }
    operator std::string_view() const noexcept { return view(); }  // NOLINT(google-explicit-constructor): it is text
    /// Ends with a zero.
    [[nodiscard]] const char* c_str() const noexcept { return characters_.data(); }

private:
    std::array<char, capacity + 1> characters_{};
    std::size_t length_;
};

/// Local time, to the second. 0 is a time like any other: callers that show times test for it first. [any-thread]
[[nodiscard]] timestamp_text FormatTimestamp(std::uint64_t time);
[[nodiscard]] timestamp_text FormatTimestamp(std::uint64_t time, const time_zone& zone);

/// Writes the same text at `out`, which has room for `timestamp_text::capacity` characters, and returns its end; null for a
/// time that cannot be shown. [any-thread]
[[nodiscard]] char* PutTimestamp(char* out, std::uint64_t time, const time_zone& zone) noexcept;

/// Reads local time: four digits of year, two each of month, day, hour, minute and second, single "-" and ":" between them
/// optional, then an optional fraction. What follows is ignored. Throws `exception_time_error`. [any-thread]
[[nodiscard]] std::uint64_t ParseTimestamp(std::string_view text);
[[nodiscard]] std::uint64_t ParseTimestamp(std::string_view text, const time_zone& zone);

}  // namespace quorvel
