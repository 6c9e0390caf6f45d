#include <optional>
#include <utility>

#include "player/query/condition.h"

namespace ostrevan::query {

namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;
using titleformat::script;

/// `time` counts 100 ns since 1601-01-01 UTC.
sys_seconds moment_of(std::uint64_t time) {
    constexpr std::uint64_t units_per_second = 10'000'000;
    constexpr std::chrono::sys_days start{std::chrono::year{1601} / 1 / 1};
    return start + seconds{time / units_per_second};
}

/// The moment of a field that is a time. Otherwise the script's text may be a time all the same, such as a date of a tag.
std::optional<std::uint64_t> exact_time(const examined& track, const script& left) {
    const auto name = left.only_field();
    return name ? track.fields.sort_value(*name) : std::nullopt;
}

std::optional<period> shown_period(const examined& track, const script& left) {
    if (const auto time = exact_time(track, left)) {
        const auto first = shown_at(moment_of(*time));
        return *time == 0 ? std::nullopt : std::optional(period{first, first + seconds{1}});
    }
    return track.read(left) ? parse_period(track.text) : std::nullopt;
}

class time_condition final : public condition {
public:
    time_condition(script left, time_test test, period right) noexcept
        : left_(std::move(left)), test_(test), right_(right) {}
    [[nodiscard]] bool matches(const examined& track) const override {
        const auto value = shown_period(track, left_);
        if (!value) return false;
        switch (test_) {
            case time_test::before:
                return value->end <= right_.first;
            case time_test::after:
                return value->first >= right_.end;
            case time_test::since:
                return value->first >= right_.first;
            case time_test::during:
                return value->first >= right_.first && value->end <= right_.end;
        }
        return false;
    }

private:
    script left_;
    time_test test_;
    period right_;
};

class recent_condition final : public condition {
public:
    recent_condition(script left, time_unit unit, std::int64_t count) noexcept
        : left_(std::move(left)), unit_(unit), count_(count) {}
    [[nodiscard]] bool matches(const examined& track) const override {
        if (const auto time = exact_time(track, left_)) {
            const auto moment = moment_of(*time);
            return *time != 0 && moment <= track.now &&
                   (unit_.months == 0 ? moment >= start(track) : shown_at(moment) >= shown_start(track));
        }
        const auto value = shown_period(track, left_);
        return value && value->first >= shown_start(track) && value->end <= shown_at(track.now) + seconds{1};
    }

private:
    [[nodiscard]] sys_seconds start(const examined& track) const { return track.now - seconds{unit_.seconds * count_}; }
    [[nodiscard]] local_time shown_start(const examined& track) const {
        return unit_.months == 0 ? shown_at(start(track)) : months_before(shown_at(track.now), unit_.months * count_);
    }

    script left_;
    time_unit unit_;
    std::int64_t count_;
};

}  // namespace

condition_ptr compare_time(script left, time_test test, period right) {
    return std::make_unique<time_condition>(std::move(left), test, right);
}

condition_ptr within_last(script left, time_unit unit, std::int64_t count) {
    return std::make_unique<recent_condition>(std::move(left), unit, count);
}

}  // namespace ostrevan::query
