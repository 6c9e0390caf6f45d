#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <map>
#include <string>

#include "quorvel/platform/clock.h"
#include "quorvel/platform/time_zone.h"
#include "quorvel/store/timestamp.h"

using quorvel::civil_time;
using quorvel::time_zone;

namespace {

/// The system's own result for the current zone.
std::optional<civil_time> local_by_the_system(std::uint64_t time) {
    const FILETIME stamp{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    SYSTEMTIME utc;
    SYSTEMTIME t;
    if (!FileTimeToSystemTime(&stamp, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &t)) return std::nullopt;
    return civil_time{t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds};
}

std::uint64_t utc(int year, int month, int day, int hour = 0, int minute = 0) {
    const auto word = [](int number) { return static_cast<WORD>(number); };
    const SYSTEMTIME time{word(year), word(month), 0, word(day), word(hour), word(minute), 0, 0};
    FILETIME stamp;
    SystemTimeToFileTime(&time, &stamp);
    return std::uint64_t{stamp.dwHighDateTime} << 32 | stamp.dwLowDateTime;
}

std::string text(std::uint64_t time) { return std::string(quorvel::FormatTimestamp(time).view()); }

}  // namespace

TEST(system_time, is_that_of_the_systems_calls) {
    constexpr auto half_hour = 1800 * quorvel::filetime_per_second;
    const auto& zone = time_zone::local();
    for (auto time = utc(2018, 1, 1); time < utc(2023, 1, 1); time += half_hour)
        for (const auto moment : {time - 1, time}) {
            const auto local = zone.to_local(moment);
            ASSERT_TRUE(local) << moment;
            ASSERT_EQ(local, local_by_the_system(moment)) << moment;
            ASSERT_EQ(zone.to_local(zone.to_utc(*local).value()), local) << moment;
        }
    for (const auto time : {std::uint64_t{0}, std::uint64_t{1}, utc(1700, 1, 1), utc(1970, 1, 1), utc(9999, 12, 31, 23),
                            utc(10000, 1, 1), utc(30827, 12, 30)})
        EXPECT_EQ(zone.to_local(time), local_by_the_system(time)) << time;
    for (const auto time : {std::uint64_t{1} << 63, (std::uint64_t{1} << 63) + 1, ~std::uint64_t{0}})
        EXPECT_EQ(text(time), "<invalid timestamp>");
}

/// ctest runs this once per zone; expected values come from the rules of the countries.
TEST(system_time, changes_the_clocks_when_the_country_does) {
    struct change {
        std::uint64_t time;
        const char* text;
    };
    static const std::multimap<std::string, change> changes{
        {"America/Los_Angeles", {utc(2021, 3, 14, 9, 59), "2021-03-14 01:59:00"}},
        {"America/Los_Angeles", {utc(2021, 3, 14, 10, 0), "2021-03-14 03:00:00"}},
        {"America/Los_Angeles", {utc(2021, 11, 7, 8, 30), "2021-11-07 01:30:00"}},
        {"America/Los_Angeles", {utc(2021, 11, 7, 10, 0), "2021-11-07 02:00:00"}},
        {"Europe/Berlin", {utc(2021, 3, 28, 0, 59), "2021-03-28 01:59:00"}},
        {"Europe/Berlin", {utc(2021, 3, 28, 1, 0), "2021-03-28 03:00:00"}},
        {"Europe/Berlin", {utc(2021, 10, 31, 1, 0), "2021-10-31 02:00:00"}},
        {"Australia/Sydney", {utc(2021, 4, 3, 15, 59), "2021-04-04 02:59:00"}},
        {"Australia/Sydney", {utc(2021, 10, 2, 16, 0), "2021-10-03 03:00:00"}},
        {"Asia/Kolkata", {utc(2021, 7, 1, 0, 0), "2021-07-01 05:30:00"}},
        {"UTC", {utc(2021, 7, 1, 0, 0), "2021-07-01 00:00:00"}},
    };
    const char* const zone = std::getenv("TZ");
    ASSERT_TRUE(zone != nullptr && changes.contains(zone)) << "the environment variable TZ must name a zone of the table";
    for (auto [row, end] = changes.equal_range(zone); row != end; ++row) {
        const auto& [time, expected] = row->second;
        EXPECT_EQ(text(time), expected);
        const bool second_of_two = expected == std::string("2021-10-31 02:00:00");
        EXPECT_EQ(quorvel::ParseTimestamp(expected) + (second_of_two ? 3600 * quorvel::filetime_per_second : 0), time)
            << expected;
    }
}

TEST(system_time, of_a_named_zone_has_the_rules_of_the_year) {
    const auto zone = time_zone::load("Pacific Standard Time");
    ASSERT_TRUE(zone);
    EXPECT_EQ(zone->to_local(utc(2021, 3, 14, 10)), (civil_time{2021, 3, 14, 3, 0, 0}));
    EXPECT_EQ(zone->to_local(utc(2006, 3, 14, 10)), (civil_time{2006, 3, 14, 2, 0, 0})) << "later in spring then";
    EXPECT_EQ(zone->to_utc({2021, 3, 14, 2, 30, 0}), utc(2021, 3, 14, 9, 30)) << "a time that the change skips";
    EXPECT_FALSE(time_zone::load("Nowhere Standard Time"));
}
