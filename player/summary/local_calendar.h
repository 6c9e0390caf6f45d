#pragma once

#include <chrono>

#include "player/query/local_time.h"

namespace ostrevan::summary {

/// Local times of many moments. The system is asked once a day (UTC) and not for each, except on days with a change of the
/// clocks.
class local_calendar {
public:
    [[nodiscard]] query::local_time at(std::chrono::sys_seconds moment);

private:
    std::chrono::sys_days day_{std::chrono::days::min()};
    std::chrono::seconds offset_{0};
    bool is_constant_ = false;
};

}  // namespace ostrevan::summary
