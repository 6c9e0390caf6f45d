#include "player/query/clock.h"

#include <ctime>
#include <stdexcept>
#include <string>

namespace ostrevan::query {
namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

seconds offset_at(sys_seconds moment) {
    const std::time_t time = moment.time_since_epoch().count();
    std::tm local{};
    return seconds{::localtime_r(&time, &local) == nullptr ? 0 : local.tm_gmtoff};
}

local_time shown_at(sys_seconds moment) { return local_time{moment.time_since_epoch() + offset_at(moment)}; }

}  // namespace

query_clock query_clock::at(std::string_view text) {
    constexpr std::string_view form = "YYYY-MM-DD HH:MM:SS";
    const auto moment = parse_period(text);
    if (!moment || text.size() != form.size()) throw std::invalid_argument("expected a time as " + std::string(form));
    return {moment->first, moment->first, std::nullopt};
}

query_clock query_clock::local_at(sys_seconds moment) {
    constexpr auto longer_than_any_change = std::chrono::hours{25};
    const auto before = offset_at(moment - longer_than_any_change);
    const auto set_back = before - offset_at(moment);
    const auto now = shown_at(moment);
    // After a clock is set back, the same times are shown again for as long as the change.
    const bool is_showing_again = set_back > seconds{0} && offset_at(moment - set_back) == before;
    return {now, is_showing_again ? now + set_back : now, moment};
}

local_time query_clock::ago(std::int64_t count) const {
    return moment_ ? shown_at(*moment_ - seconds{count}) : now_ - seconds{count};
}

}  // namespace ostrevan::query
