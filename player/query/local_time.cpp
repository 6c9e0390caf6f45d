#include "player/query/local_time.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace ostrevan::query {

namespace {

using namespace std::chrono;

struct part {
    std::string_view separators;
    std::size_t digits;
};
constexpr std::array<part, 6> date_parts = {{{"", 4}, {"-", 2}, {"-", 2}, {" T", 2}, {":", 2}, {":", 2}}};

constexpr local_days earliest{year{0} / January / 1};

/// Takes one part from the text.
std::optional<int> take(std::string_view& text, const part& form) noexcept {
    if (!form.separators.empty()) {
        if (text.empty() || form.separators.find(text.front()) == std::string_view::npos) return std::nullopt;
        text.remove_prefix(1);
    }
    if (text.size() < form.digits) return std::nullopt;
    int value = 0;
    for (const char c : text.substr(0, form.digits)) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    text.remove_prefix(form.digits);
    return value;
}

local_time end_of(local_time first, const year_month_day& date, std::size_t given) noexcept {
    switch (given) {
        case 1:
            return local_days{date + years{1}};
        case 2:
            return local_days{date + months{1}};
        case 3:
            return first + days{1};
        case 4:
            return first + hours{1};
        case 5:
            return first + minutes{1};
        default:
            return first + seconds{1};
    }
}

}  // namespace

local_time shown_at(sys_seconds moment) noexcept {
    const std::time_t time = moment.time_since_epoch().count();
    std::tm local{};
    const auto offset = ::localtime_r(&time, &local) == nullptr ? 0 : local.tm_gmtoff;
    return local_time{moment.time_since_epoch() + seconds{offset}};
}

std::optional<period> parse_period(std::string_view text) noexcept {
    std::array<int, date_parts.size()> values{0, 1, 1, 0, 0, 0};
    std::size_t given = 0;
    do {
        if (given == date_parts.size()) return std::nullopt;
        const auto value = take(text, date_parts[given]);
        if (!value) return std::nullopt;
        values[given++] = *value;
    } while (!text.empty());

    const auto [y, mo, d, h, mi, s] = values;
    const year_month_day date{year{y}, month{static_cast<unsigned>(mo)}, day{static_cast<unsigned>(d)}};
    if (!date.ok() || h > 23 || mi > 59 || s > 59) return std::nullopt;
    const local_time first = local_days{date} + hours{h} + minutes{mi} + seconds{s};
    return period{first, end_of(first, date, given)};
}

local_time months_before(local_time moment, std::int64_t count) noexcept {
    const local_days today = floor<days>(moment);
    const year_month_day date{today};
    const std::int64_t month_number = static_cast<int>(date.year()) * 12LL + static_cast<unsigned>(date.month()) - 1 - count;
    if (month_number < 0) return earliest;
    const year_month then = year{static_cast<int>(month_number / 12)} / static_cast<int>(month_number % 12 + 1);
    const day last = (then / std::chrono::last).day();
    return local_days{then / std::min(date.day(), last)} + (moment - today);
}

}  // namespace ostrevan::query
