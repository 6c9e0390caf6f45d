#include "player/summary/local_calendar.h"

namespace ostrevan::summary {
namespace {

using namespace std::chrono;

seconds offset_at(sys_seconds moment) { return query::shown_at(moment).time_since_epoch() - moment.time_since_epoch(); }

}  // namespace

query::local_time local_calendar::at(sys_seconds moment) {
    if (const auto day = floor<days>(moment); day != day_) {
        day_ = day;
        offset_ = offset_at(day);
        is_constant_ = offset_at(day + days{1} - seconds{1}) == offset_;
    }
    return query::local_time{moment.time_since_epoch() + (is_constant_ ? offset_ : offset_at(moment))};
}

}  // namespace ostrevan::summary
