#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "player/query/query.h"
#include "tests/player/titleformat/fields.h"

namespace ostrevan::query {
namespace {

using titleformat::table_of_fields;

/// Clocks go from 02:00 to 03:00 on the last Sunday of March and from 03:00 to 02:00 on that of October.
class changed_clocks : public testing::Test {
protected:
    void SetUp() override { set_zone("CET-1CEST,M3.5.0,M10.5.0/3"); }
    void TearDown() override { set_zone("UTC0"); }
    static void set_zone(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
};

TEST_F(changed_clocks, the_last_week_or_hour_is_so_much_time_whatever_clocks_showed) {
    // When it was played by the clock on the wall, the moment now in UTC, how far back. Months go by the calendar.
    const auto matches = [](std::string_view text) {
        const table_of_fields track({{"last_played", std::string(text.substr(0, 19))}});
        const auto now = std::chrono::sys_seconds{parse_period(text.substr(20, 19))->first.time_since_epoch()};
        return parse("%last_played% DURING LAST " + std::string(text.substr(40))).matches(track, query_clock::local_at(now));
    };
    for (const std::string_view text :
         {"2024-03-27 11:00:00 2024-04-03 10:00:00 1 WEEK", "2024-10-23 13:00:00 2024-10-30 11:00:00 1 WEEK",
          "2024-03-31 01:50:00 2024-03-31 01:10:00 20 MINUTES", "2024-10-27 02:55:00 2024-10-27 01:05:00 1 HOUR",
          "2024-10-27 03:05:00 2024-10-27 02:05:00 1 DAY", "2024-03-03 12:00:00 2024-04-03 10:00:00 1 MONTH"})
        EXPECT_TRUE(matches(text)) << text;
    for (const std::string_view text :
         {"2024-03-27 10:59:59 2024-04-03 10:00:00 1 WEEK", "2024-10-23 12:59:59 2024-10-30 11:00:00 1 WEEK",
          "2024-03-31 01:49:59 2024-03-31 01:10:00 20 MINUTES", "2024-10-27 03:05:01 2024-10-27 01:05:00 1 HOUR",
          "2024-10-27 03:05:01 2024-10-27 02:05:00 1 DAY", "2024-03-03 11:59:59 2024-04-03 10:00:00 1 MONTH"})
        EXPECT_FALSE(matches(text)) << text;
}

}  // namespace
}  // namespace ostrevan::query
