#include "quorvel/store/timestamp.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using quorvel::FormatTimestamp;
using quorvel::ParseTimestamp;

namespace {

/// Two hours ahead of UTC, all year round.
const quorvel::time_zone& zone() {
    static const auto rule = quorvel::time_zone::load("<+02>-2");
    static const auto zone_of_windows = quorvel::time_zone::load("South Africa Standard Time");
    return rule ? *rule : *zone_of_windows;
}

/// 2024-03-05 07:08:09 there.
constexpr std::uint64_t some_time = 133'540'888'890'000'000;

/// Texts between bars.
std::vector<std::string> parts_of(const std::string& text) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == '|') parts.emplace_back();
        else parts.back() += c;
    }
    return parts;
}

}  // namespace

TEST(timestamp, is_read_with_and_without_separators) {
    for (const auto& text : parts_of("2024-03-05 07:08:09|20240305 070809|20240305070809| \t\n\v\f\r2024-0305 \t07:0809|"
                                     "2024-03-05 07:08:09.|2024-03-05 07:08:09 and more|2024-03-05 07:08:09Z|"
                                     "2024-03-05 07:08:09,5|2024-03-05 07:08:09.0009"))
        EXPECT_EQ(ParseTimestamp(text, zone()), some_time) << text;
    for (const auto& [fraction, milliseconds] : {std::pair(".5", 500U), {".1239", 123U}, {".999999", 999U}})
        EXPECT_EQ(ParseTimestamp(std::string("2024-03-05 07:08:09") + fraction, zone()), some_time + milliseconds * 10'000);
}

TEST(timestamp, that_is_no_time_is_refused) {
    for (const auto& text : parts_of(
             "|N/A|24-03-05 07:08:09|2024--03-05 07:08:09|2024-3-05 07:08:09|2024 03-05 07:08:09|2024-03-05T07:08:09|"
             "2024-03-05 07::08:09|2024-03-05 07:08|2024-03-05|2024-03-05 07:08:0|-2024-03-05 07:08:09|1600-12-31 23:59:59|"
             "2024-13-01 00:00:00|2024-00-01 00:00:00|2024-01-00 00:00:00|2024-01-32 00:00:00|2024-02-31 00:00:00|"
             "2024-01-01 24:00:00|2024-01-01 00:60:00|2024-01-01 00:00:60|1601-01-01 01:59:59"))
        EXPECT_THROW((void)ParseTimestamp(text, zone()), quorvel::exception_time_error) << text;
}

TEST(timestamp, is_written_in_local_time) {
    struct {
        std::uint64_t time;
        const char* text;
    } const cases[] = {{some_time, "2024-03-05 07:08:09"},
                       {some_time + 9'999'999, "2024-03-05 07:08:09"},
                       {0, "1601-01-01 02:00:00"},
                       {2'650'467'743'999'999'999, "10000-01-01 01:59:59"},
                       {9'223'372'036'854'775'808U, "<invalid timestamp>"},
                       {~std::uint64_t{0}, "<invalid timestamp>"}};
    for (const auto& [time, text] : cases) {
        EXPECT_EQ(FormatTimestamp(time, zone()).view(), text);
        EXPECT_STREQ(FormatTimestamp(time, zone()).c_str(), text);
    }
    EXPECT_EQ(ParseTimestamp(FormatTimestamp(some_time + 9'999'999, zone()), zone()), some_time);
}
