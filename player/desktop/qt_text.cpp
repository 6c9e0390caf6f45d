#include "player/desktop/qt_text.h"

#include <cmath>

namespace ostrevan::desktop {

QString time_text(double seconds) {
    const auto whole = static_cast<long long>(std::floor(std::max(seconds, 0.0)));
    constexpr long long minute = 60, hour = 60 * minute;
    const auto two = [](long long number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    if (whole < hour) return QStringLiteral("%1:%2").arg(whole / minute).arg(two(whole % minute));
    return QStringLiteral("%1:%2:%3").arg(whole / hour).arg(two(whole % hour / minute), two(whole % minute));
}

}  // namespace ostrevan::desktop
