#include "quorvel/platform/time_zone.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "quorvel/platform/clock.h"
#include "quorvel/platform/zone_changes_posix.h"

namespace quorvel {
namespace {

constexpr std::int64_t unix_of_1601 = -static_cast<std::int64_t>(filetime_of_1970 / filetime_per_second);
/// The range of the Windows conversions.
constexpr int first_year = 1601;
constexpr int last_year = 30827;
constexpr std::int64_t seconds_per_day = 86400;

/// A zone whose changes are known. They are read once: the conversion of the C library takes a lock, and changes when any
/// code in the process sets TZ.
class database_zone final : public time_zone {
public:
    explicit database_zone(zone_changes changes) : changes_(std::move(changes)) {}

    std::optional<civil_time> to_local(std::uint64_t time) const noexcept override {
        using namespace std::chrono;
        if (time >> 63 != 0) return std::nullopt;
        const std::int64_t utc = static_cast<std::int64_t>(time / filetime_per_second) + unix_of_1601;
        if (utc >= end_of_years) return std::nullopt;
        const std::int64_t local = utc + changes_.offset_at(utc);
        if (local >= end_of_years) return std::nullopt;

        const auto day = floor<days>(sys_seconds(seconds(local)));
        const year_month_day date(day);
        const auto second = static_cast<std::int32_t>(local - sys_seconds(day).time_since_epoch().count());
        return civil_time{int(date.year()),
                          static_cast<std::int32_t>(unsigned(date.month())),
                          static_cast<std::int32_t>(unsigned(date.day())),
                          second / 3600,
                          second / 60 % 60,
                          second % 60,
                          static_cast<std::int32_t>(time / 10'000 % 1000)};
    }

    std::optional<std::uint64_t> to_utc(const civil_time& local) const noexcept override {
        using namespace std::chrono;
        const year_month_day date{year(local.year), month(static_cast<unsigned>(local.month)),
                                  day(static_cast<unsigned>(local.day))};
        if (!date.ok() || local.year < first_year || local.year > last_year) return std::nullopt;
        const std::int64_t wall_clock = std::int64_t{sys_days(date).time_since_epoch().count()} * seconds_per_day +
                                        local.hour * 3600 + local.minute * 60 + local.second;
        const std::int64_t since_1601 = changes_.utc_of(wall_clock) - unix_of_1601;
        if (since_1601 < 0) return std::nullopt;
        return static_cast<std::uint64_t>(since_1601) * filetime_per_second +
               static_cast<std::uint64_t>(local.millisecond) * 10'000;
    }

private:
    static constexpr std::int64_t end_of_years =
        std::chrono::sys_days(std::chrono::year(last_year + 1) / 1 / 1).time_since_epoch().count() * seconds_per_day;

    const zone_changes changes_;
};

std::optional<std::string> contents_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) return std::nullopt;
    return bytes;
}

std::optional<zone_changes> changes_in_file(const std::string& path) {
    const auto bytes = contents_of(path);
    return bytes ? zone_changes::from_file(*bytes) : std::nullopt;
}

/// The value of TZ: the name of a zone, a path, each possibly after a colon, or a rule.
std::optional<zone_changes> changes_named(std::string name) {
    if (name.starts_with(':')) name.erase(0, 1);
    if (name.empty() || name.find("..") != std::string::npos) return std::nullopt;
    const char* const folder = std::getenv("TZDIR");
    const std::string path =
        name.starts_with('/') ? name : std::string(folder != nullptr ? folder : "/usr/share/zoneinfo") + '/' + name;
    if (auto found = changes_in_file(path)) return found;
    if (const auto rule = zone_rule::parse(name)) return zone_changes(*rule);
    return std::nullopt;
}

}  // namespace

const time_zone& time_zone::local() {
    static const database_zone zone = [] {
        const char* const name = std::getenv("TZ");
        auto changes = name != nullptr ? changes_named(name) : changes_in_file("/etc/localtime");
        return database_zone(changes ? *std::move(changes) : zone_changes(zone_rule()));
    }();
    return zone;
}

std::unique_ptr<const time_zone> time_zone::load(const std::string& name) {
    auto changes = changes_named(name);
    if (!changes) return nullptr;
    return std::make_unique<database_zone>(*std::move(changes));
}

}  // namespace quorvel
