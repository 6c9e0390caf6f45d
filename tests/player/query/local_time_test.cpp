#include "player/query/local_time.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "player/query/query.h"
#include "tests/player/titleformat/fields.h"

namespace ostrevan::query {
namespace {

class times : public testing::Test {
protected:
    void SetUp() override { set_zone("UTC0"); }
    static void set_zone(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    static std::chrono::sys_seconds utc(std::string_view text) {
        return std::chrono::sys_seconds{parse_period(text)->first.time_since_epoch()};
    }
    /// Rows of a time, now in UTC, and a condition: on %text%, which is the time as it stands, on %at%, the moment half a
    /// second after it in UTC, or DURING LAST on both.
    static void expect(bool is_match, std::initializer_list<std::string> rows) {
        for (const auto& row : rows) {
            titleformat::table_of_fields track({{"text", row.substr(0, 19)}});
            const auto since_1601 = utc(row.substr(0, 19)) - utc("1601");
            track.moments["at"] = static_cast<std::uint64_t>(since_1601.count()) * 10'000'000 + 5'000'000;
            const auto asked = row.substr(40), last = "% DURING LAST " + asked;
            const auto both = "%text" + last + " AND %at" + last, either = "%text" + last + " OR %at" + last;
            const auto condition = parse(asked.starts_with('%') ? asked : is_match ? both : either);
            EXPECT_EQ(condition.matches(track, utc(row.substr(20, 19))), is_match) << row;
        }
    }
};

TEST_F(times, last_counts_back_from_now) {
    expect(true, {"2024-05-24 12:00:00 2024-05-31 12:00:00 1 WEEK", "2024-05-31 12:00:00 2024-05-31 12:00:00 WEEK",
                  "2023-12-31 23:00:00 2024-01-01 00:30:00 90 MINUTES", "2023-12-31 23:30:00 2024-01-01 00:30:00 HOUR",
                  "2024-02-28 10:00:00 2024-03-01 10:00:00 2 DAYS", "2024-02-29 08:00:00 2024-03-31 08:00:00 1 MONTH",
                  "2023-11-15 00:00:00 2024-02-15 00:00:00 3 MONTHS", "2023-02-28 00:00:00 2024-02-29 00:00:00 YEAR",
                  "0000-01-01 00:00:00 2024-02-29 00:00:00 %text% DURING LAST 975000 YEARS",
                  "0000-01-01 00:00:00 2024-02-29 00:00:00 %text% DURING LAST 1000000 WEEKS"});
    expect(false, {"2024-05-24 11:59:59 2024-05-31 12:00:00 1 WEEK", "2024-05-31 12:00:01 2024-05-31 12:00:00 WEEK",
                   "2023-12-31 23:00:00 2024-01-01 00:30:00 89 MINUTES", "2024-02-28 10:00:00 2024-03-01 10:00:00 1 DAY",
                   "2024-02-29 07:59:59 2024-03-31 08:00:00 1 MONTH", "2024-05-31 12:00:01 2024-05-31 12:00:00 MONTH"});
    titleformat::table_of_fields never({});
    never.moments["at"] = 0;
    EXPECT_FALSE(parse("%at% BEFORE 2024 OR %at% DURING LAST 1000 YEARS").matches(never, utc("2024")));
}

TEST_F(times, moments_are_compared_and_not_what_clocks_showed) {
    // Clocks go from 02:00 to 03:00 on the last Sunday of March and from 03:00 to 02:00 on that of October.
    set_zone("CET-1CEST,M3.5.0,M10.5.0/3");
    expect(true, {"2024-10-27 00:55:00 2024-10-27 01:05:00 %at% DURING LAST HOUR",
                  "2024-10-27 01:05:00 2024-10-27 01:05:00 %at% DURING LAST MONTH",
                  "2024-03-03 11:00:00 2024-04-03 10:00:00 %at% DURING LAST MONTH",
                  "2024-10-27 00:30:00 2024-10-27 03:00:00 %at% DURING 2024-10-27 02:30",
                  "2024-10-27 01:30:00 2024-10-27 03:00:00 %at% DURING 2024-10-27 02:30",
                  "2024-10-27 02:30:00 2024-10-27 03:00:00 %text% DURING LAST 3 HOURS"});
    expect(false, {"2024-10-27 00:04:59 2024-10-27 01:05:00 %at% DURING LAST HOUR",
                   "2024-10-27 01:00:00 2024-10-27 00:55:00 %at% DURING LAST MONTH",
                   "2024-03-03 10:59:59 2024-04-03 10:00:00 %at% DURING LAST MONTH",
                   "2024-10-27 00:30:00 2024-10-27 03:00:00 %at% BEFORE 2024-10-27 02:30:00",
                   "2024-10-27 02:30:00 2024-10-27 04:00:00 %text% DURING LAST 2 HOURS",
                   "2024-10-27 02:30:00 2024-10-27 00:29:59 %text% DURING LAST 2 HOURS"});
}

}  // namespace
}  // namespace ostrevan::query
