#include <utility>

#include "player/query/condition.h"

namespace ostrevan::query {

namespace {

using titleformat::script;

std::optional<period> read_period(const examined& track, const script& left) {
    if (!track.read(left)) return std::nullopt;
    return parse_period(track.text);
}

bool inside(const period& inner, local_time first, local_time end) { return inner.first >= first && inner.end <= end; }

class time_condition final : public condition {
public:
    time_condition(script left, time_test test, period right) noexcept
        : left_(std::move(left)), test_(test), right_(right) {}
    [[nodiscard]] bool matches(const examined& track) const override {
        const auto value = read_period(track, left_);
        if (!value) return false;
        switch (test_) {
            case time_test::before:
                return value->end <= right_.first;
            case time_test::after:
                return value->first >= right_.end;
            case time_test::since:
                return value->first >= right_.first;
            case time_test::during:
                return inside(*value, right_.first, right_.end);
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
        const auto value = read_period(track, left_);
        return value && inside(*value, first(track.clock), track.clock.latest() + std::chrono::seconds{1});
    }

private:
    [[nodiscard]] local_time first(const query_clock& clock) const {
        return unit_.months == 0 ? clock.ago(unit_.seconds * count_) : months_before(clock.now(), unit_.months * count_);
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
