#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "quorvel/platform/clock.h"
#include "quorvel/platform/time_zone.h"

using quorvel::civil_time;
using quorvel::time_zone;

namespace {

/// Puts the C library into another zone and returns the one that it was in.
std::string change_zone(const std::string& name) {
    const std::string before = std::getenv("TZ");
    setenv("TZ", name.c_str(), 1);
    tzset();
    return before;
}

civil_time local_by_the_c_library(std::uint64_t time) {
    const auto seconds = static_cast<std::time_t>(time / quorvel::filetime_per_second) -
                         static_cast<std::time_t>(quorvel::filetime_of_1970 / quorvel::filetime_per_second);
    std::tm t{};
    localtime_r(&seconds, &t);
    return {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, 0};
}

std::uint64_t utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    static const auto zone = time_zone::load("UTC0");
    return zone->to_utc({year, month, day, hour, minute, second}).value();
}

/// Every zone of the system's database, known by the first bytes of its file.
std::vector<std::string> database_zones() {
    namespace fs = std::filesystem;
    const fs::path root = "/usr/share/zoneinfo";
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const auto name = entry.path().lexically_relative(root).string();
        std::string magic(4, '\0');
        std::ifstream(entry.path()).read(magic.data(), 4);
        if (magic == "TZif" && !name.starts_with("right/")) names.push_back(name);
    }
    return names;
}

}  // namespace

TEST(time_zone, agrees_with_the_c_library_everywhere) {
    auto names = database_zones();
    const auto zones = names.size();
    ASSERT_GT(zones, 300U) << "the zone database is missing: install the package tzdata";
    for (const char* rule : {"PST8PDT,M3.2.0,M11.1.0", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", "IST-1GMT0,M10.5.0,M3.5.0/1",
                             "XXX3YYY,J60/-1,300/26:30:15", "<-02>2"})
        names.emplace_back(rule);
    const std::set<std::string> looked_at_closely{"America/Los_Angeles", "Australia/Lord_Howe", "Europe/Dublin",
                                                  "Africa/Casablanca",   "Pacific/Apia",        "America/Sao_Paulo"};

    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::uint64_t> recent(utc(1900, 1, 1), utc(2100, 1, 1));
    std::uniform_int_distribution<std::uint64_t> whenever(0, utc(9999, 1, 1));
    for (std::size_t n = 0; n < names.size(); ++n) {
        const auto& name = names[n];
        const auto zone = time_zone::load(name);
        ASSERT_TRUE(zone) << name;
        const auto zone_before = change_zone(name);
        for (int i = 0; i < 300; ++i) {
            auto time = (i % 3 == 0 ? whenever(random) : recent(random)) / 10'000'000 * 10'000'000;
            // The C library applies a bare rule to years since 1970 only.
            if (n >= zones && time < quorvel::filetime_of_1970) time += utc(2001, 1, 1);
            const auto local = zone->to_local(time);
            ASSERT_EQ(local, local_by_the_c_library(time)) << name << " at " << time;
            if (local->year < 1601) continue;
            const auto back = zone->to_utc(*local);
            ASSERT_TRUE(back) << name << " at " << time;
            ASSERT_LE(*back, time) << name;
            ASSERT_EQ(zone->to_local(*back), local) << name << ": the first of two at most";
        }
        constexpr std::uint64_t half_hour = 1800 * quorvel::filetime_per_second;
        const auto closely_until = looked_at_closely.contains(name) ? utc(2012, 1, 1) : 0;
        for (auto time = utc(2010, 1, 1); time < closely_until; time += half_hour)
            for (const auto near : {time - 10'000'000, time})
                ASSERT_EQ(zone->to_local(near), local_by_the_c_library(near)) << name << " at " << near;
        change_zone(zone_before);
    }
}

TEST(time_zone, reads_skipped_and_repeated_times_by_rule) {
    for (const char* rule : {"PST8PDT,M3.2.0,M11.1.0", "XST8XDT"}) {
        const auto zone = time_zone::load(rule);
        EXPECT_EQ(zone->to_utc({2021, 3, 14, 1, 59, 59}), utc(2021, 3, 14, 9, 59, 59));
        EXPECT_EQ(zone->to_utc({2021, 3, 14, 2, 30, 0}), utc(2021, 3, 14, 9, 30, 0)) << "skipped";
        EXPECT_EQ(zone->to_utc({2021, 3, 14, 3, 0, 0}), utc(2021, 3, 14, 10, 0, 0));
        EXPECT_EQ(zone->to_utc({2021, 11, 7, 1, 30, 0}), utc(2021, 11, 7, 8, 30, 0)) << "the first of two";
        EXPECT_EQ(zone->to_utc({2021, 11, 7, 2, 0, 0}), utc(2021, 11, 7, 10, 0, 0));
        EXPECT_EQ(zone->to_utc({29021, 7, 1, 2, 0, 0}), utc(29021, 7, 1, 9, 0, 0)) << "rules hold for ever";
    }
    EXPECT_EQ(time_zone::load("<-03>3<-02>,J59,300")->to_local(utc(2024, 2, 28, 12))->hour, 10)
        << "29 February has no number";
}

TEST(time_zone, converts_within_the_range_of_the_windows_calls) {
    const auto east = time_zone::load("<+09>-9");
    const auto west = time_zone::load(":<-08>8");
    EXPECT_EQ(east->to_local(1'239'999), (civil_time{1601, 1, 1, 9, 0, 0, 123}));
    EXPECT_EQ(west->to_local(0), (civil_time{1600, 12, 31, 16, 0, 0}));
    const auto last = utc(30827, 12, 31, 23, 59, 59);
    EXPECT_EQ(west->to_local(last), (civil_time{30827, 12, 31, 15, 59, 59}));
    EXPECT_FALSE(east->to_local(last)) << "already in the year 30828 there";
    EXPECT_FALSE(west->to_local(last + quorvel::filetime_per_second));
    for (const auto time : {std::uint64_t{1} << 63, ~std::uint64_t{0}}) EXPECT_FALSE(west->to_local(time));

    EXPECT_EQ(west->to_utc({1601, 1, 1}), 8 * 3600 * quorvel::filetime_per_second);
    EXPECT_FALSE(east->to_utc({1601, 1, 1})) << "before 1601 in UTC";
    EXPECT_FALSE(east->to_utc({2023, 2, 29}));
}

TEST(time_zone, of_a_file_follows_its_rule_after_the_last_change_and_is_refused_when_damaged) {
    // Two blocks; in the second a change to the second type, three hours ahead, on 1 July 2000.
    std::string bytes = "TZif2" + std::string(39, '\0') + "TZif2" + std::string(39, '\0');
    bytes[44 + 35] = 1;
    bytes[44 + 39] = 2;
    bytes += std::string(
        "\0\0\0\0\x39\x5D\x30\0"
        "\1"
        "\0\0\0\0\0\0"
        "\0\0\x2A\x30\0\0",
        21);
    const std::string path = testing::TempDir() + "zone-" + std::to_string(getpid());
    const auto load = [&](const std::string& contents) {
        std::ofstream(path, std::ios::binary) << contents;
        return time_zone::load(path);
    };
    const auto zone = load(bytes + "\nAAA0BBB,M3.5.0,M10.5.0\n");
    for (const auto& [month, hour] : {std::pair(6, 12), {7, 15}, {11, 12}})
        EXPECT_EQ(zone->to_local(utc(2000, month, 2, 12))->hour, hour) << month;
    EXPECT_EQ(zone->to_local(utc(2001, 7, 2, 12))->hour, 13);
    for (std::size_t size = 0; size < bytes.size(); ++size) EXPECT_FALSE(load(bytes.substr(0, size))) << size;
    bytes[96] = 2;
    EXPECT_FALSE(load(bytes)) << "there is no third type";
    std::filesystem::remove(path);
}

TEST(time_zone, refuses_what_is_neither_a_zone_nor_a_rule) {
    setenv("TZDIR", "/usr/share/zoneinfo/Europe", 1);
    EXPECT_TRUE(time_zone::load("Berlin"));
    unsetenv("TZDIR");
    for (const char* name : {"", "Nowhere/Land", "../zoneinfo/UTC", "/etc/passwd", "AB3", "PST8PDT,M13.1.0,M11.1.0",
                             "PST8PDT,M3.2.0", "PST200"})
        EXPECT_FALSE(time_zone::load(name)) << name;
}
