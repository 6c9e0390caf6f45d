#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quorvel {

/// The yearly rule of a zone in the form of the POSIX variable TZ, such as "PST8PDT,M3.2.0,M11.1.0".
class zone_rule {
public:
    /// Empty when the text is not a rule.
    static std::optional<zone_rule> parse(std::string_view text) noexcept;

    /// A change of the offset: the moment in seconds since 1970 UTC, and the seconds east of Greenwich from then on.
    struct change {
        std::int64_t at;
        std::int32_t offset;
    };
    struct year_changes {
        change first;
        change second;
    };

    /// The offset outside summer time.
    [[nodiscard]] std::int32_t standard_offset() const noexcept { return standard_; }
    [[nodiscard]] bool has_changes() const noexcept { return has_summer_; }
    /// Both changes of a year, in their order in time.
    [[nodiscard]] year_changes changes_in(int year) const noexcept;

private:
    friend class rule_reader;

    struct date {
        enum class kind : std::uint8_t { day_without_leap, day_from_zero, weekday } how = kind::weekday;
        std::int32_t month = 0;
        std::int32_t week = 0;
        std::int32_t day = 0;
        std::int32_t second_of_day = 2 * 3600;
    };
    /// Seconds since 1970 on the wall clock.
    static std::int64_t local_moment(const date& when, int year) noexcept;

    std::int32_t standard_ = 0;
    std::int32_t summer_ = 0;
    bool has_summer_ = false;
    date start_;
    date end_;
};

}  // namespace quorvel
