#include "quorvel/platform/time_zone.h"

#include <windows.h>

#include "quorvel/platform/utf16_win32.h"

namespace quorvel {
namespace {

/// A zone of the system, with the rules that its calls apply.
class system_zone final : public time_zone {
public:
    /// The zone that is set in Windows; a change of the setting takes effect at once.
    system_zone() = default;
    explicit system_zone(const DYNAMIC_TIME_ZONE_INFORMATION& zone) noexcept : named_(zone) {}

    std::optional<civil_time> to_local(std::uint64_t time) const noexcept override {
        if (time >> 63 != 0) return std::nullopt;
        const FILETIME stamp{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
        SYSTEMTIME utc;
        SYSTEMTIME local;
        if (!FileTimeToSystemTime(&stamp, &utc)) return std::nullopt;
        const rules applied(named_, utc.wYear);
        if (!applied.known || !SystemTimeToTzSpecificLocalTime(applied.chosen, &utc, &local)) return std::nullopt;
        return civil_time{local.wYear,   local.wMonth,  local.wDay,         local.wHour,
                          local.wMinute, local.wSecond, local.wMilliseconds};
    }

    std::optional<std::uint64_t> to_utc(const civil_time& time) const noexcept override {
        const auto word = [](std::int32_t number) { return static_cast<WORD>(number); };
        const SYSTEMTIME local{word(time.year), word(time.month),  word(0),           word(time.day),
                               word(time.hour), word(time.minute), word(time.second), word(time.millisecond)};
        SYSTEMTIME utc;
        FILETIME stamp;
        const rules applied(named_, local.wYear);
        if (!applied.known || !TzSpecificLocalTimeToSystemTime(applied.chosen, &local, &utc) ||
            !SystemTimeToFileTime(&utc, &stamp))
            return std::nullopt;
        return static_cast<std::uint64_t>(stamp.dwHighDateTime) << 32 | stamp.dwLowDateTime;
    }

private:
    /// The rules of a named zone for a year. Null means the zone that is set, whose rules the calls find themselves.
    struct rules {
        rules(const std::optional<DYNAMIC_TIME_ZONE_INFORMATION>& zone, WORD year) noexcept {
            if (!zone) return;
            auto changeable = *zone;
            known = GetTimeZoneInformationForYear(year, &changeable, &of_year) != FALSE;
            chosen = &of_year;
        }
        bool known = true;
        TIME_ZONE_INFORMATION of_year{};
        const TIME_ZONE_INFORMATION* chosen = nullptr;
    };

    std::optional<DYNAMIC_TIME_ZONE_INFORMATION> named_;
};

}  // namespace

const time_zone& time_zone::local() {
    static const system_zone zone;
    return zone;
}

std::unique_ptr<const time_zone> time_zone::load(const std::string& name) {
    const std::wstring wanted = to_utf16(name);
    DYNAMIC_TIME_ZONE_INFORMATION zone;
    for (DWORD i = 0; EnumDynamicTimeZoneInformation(i, &zone) == ERROR_SUCCESS; ++i)
        if (wanted == zone.TimeZoneKeyName) return std::make_unique<system_zone>(zone);
    return nullptr;
}

}  // namespace quorvel
