#include "quorvel/platform/zone_rule_posix.h"

#include <algorithm>
#include <chrono>

namespace quorvel {

/// Reads the text from its start. Each function returns whether it found what it reads.
class rule_reader {
public:
    explicit rule_reader(std::string_view text) noexcept : text_(text) {}

    bool rule(zone_rule& out) noexcept {
        std::int32_t west = 0;
        if (!name() || !time_of_day(west)) return false;
        out.standard_ = -west;
        if (text_.empty()) return true;
        if (!name()) return false;
        out.has_summer_ = true;
        out.summer_ = out.standard_ + 3600;
        if (!text_.empty() && text_[0] != ',') {
            if (!time_of_day(west)) return false;
            out.summer_ = -west;
        }
        // The usual default for a zone with summer time but without dates for it.
        if (text_.empty()) text_ = ",M3.2.0,M11.1.0";
        return date(out.start_) && date(out.end_) && text_.empty();
    }

private:
    using rule_date = zone_rule::date;

    bool skip(char c) noexcept {
        if (!text_.starts_with(c)) return false;
        text_.remove_prefix(1);
        return true;
    }

    bool name() noexcept {
        const bool quoted = skip('<');
        const auto belongs = [&](char c) {
            const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
            return letter || (quoted && ((c >= '0' && c <= '9') || c == '+' || c == '-'));
        };
        std::size_t length = 0;
        while (length < text_.size() && belongs(text_[length])) ++length;
        text_.remove_prefix(length);
        return length >= 3 && (!quoted || skip('>'));
    }

    bool number(std::int32_t& out, std::int32_t largest) noexcept {
        std::int32_t value = 0;
        std::size_t length = 0;
        for (; length < text_.size() && length < 4 && text_[length] >= '0' && text_[length] <= '9'; ++length)
            value = value * 10 + (text_[length] - '0');
        text_.remove_prefix(length);
        out = value;
        return length > 0 && value <= largest;
    }

    /// [+-]hours[:minutes[:seconds]] as seconds; the hours may go beyond a day.
    bool time_of_day(std::int32_t& out) noexcept {
        const bool negative = skip('-');
        if (!negative) skip('+');
        std::int32_t hours = 0;
        std::int32_t minutes = 0;
        std::int32_t seconds = 0;
        if (!number(hours, 167)) return false;
        if (skip(':') && !number(minutes, 59)) return false;
        if (skip(':') && !number(seconds, 59)) return false;
        out = hours * 3600 + minutes * 60 + seconds;
        if (negative) out = -out;
        return true;
    }

    bool date(rule_date& out) noexcept {
        if (!skip(',')) return false;
        bool good = false;
        if (skip('M')) {
            out.how = rule_date::kind::weekday;
            good = number(out.month, 12) && skip('.') && number(out.week, 5) && skip('.') && number(out.day, 6) &&
                   out.month > 0 && out.week > 0;
        } else if (skip('J')) {
            out.how = rule_date::kind::day_without_leap;
            good = number(out.day, 365) && out.day > 0;
        } else {
            out.how = rule_date::kind::day_from_zero;
            good = number(out.day, 365);
        }
        return good && (!skip('/') || time_of_day(out.second_of_day));
    }

    std::string_view text_;
};

std::optional<zone_rule> zone_rule::parse(std::string_view text) noexcept {
    zone_rule rule;
    if (!rule_reader(text).rule(rule)) return std::nullopt;
    return rule;
}

std::int64_t zone_rule::local_moment(const date& when, int year) noexcept {
    using namespace std::chrono;
    const auto calendar_year = std::chrono::year(year);
    sys_days day = calendar_year / January / 1;
    switch (when.how) {
        case date::kind::day_from_zero:
            day += days(when.day);
            break;
        case date::kind::day_without_leap:
            day += days(when.day - 1 + (calendar_year.is_leap() && when.day >= 60 ? 1 : 0));
            break;
        case date::kind::weekday: {
            const auto month_of_year = calendar_year / month(static_cast<unsigned>(when.month));
            const auto day_of_week = weekday(static_cast<unsigned>(when.day));
            day = when.week == 5 ? sys_days(month_of_year / day_of_week[last])
                                 : sys_days(month_of_year / day_of_week[static_cast<unsigned>(when.week)]);
        }
    }
    return std::int64_t{day.time_since_epoch().count()} * 86400 + when.second_of_day;
}

zone_rule::year_changes zone_rule::changes_in(int year) const noexcept {
    change to_summer{local_moment(start_, year) - standard_, summer_};
    change to_standard{local_moment(end_, year) - summer_, standard_};
    if (to_standard.at < to_summer.at) std::swap(to_summer, to_standard);
    return {to_summer, to_standard};
}

}  // namespace quorvel
