#include <windows.h>

#include "quorvel/platform/time_zone.h"

namespace quorvel {
namespace {

/// The zone that is set in Windows, with the rules of the year in question; a change of the setting takes effect at once.
class system_zone final : public time_zone {
public:
    std::optional<civil_time> to_local(std::uint64_t time) const noexcept override {
        const FILETIME stamp{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
        SYSTEMTIME utc;
        SYSTEMTIME local;
        if (!FileTimeToSystemTime(&stamp, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
            return std::nullopt;
        return civil_time{local.wYear,   local.wMonth,  local.wDay,         local.wHour,
                          local.wMinute, local.wSecond, local.wMilliseconds};
    }

    std::optional<std::uint64_t> to_utc(const civil_time& time) const noexcept override {
        const auto word = [](std::int32_t number) { return static_cast<WORD>(number); };
        const SYSTEMTIME local{word(time.year), word(time.month),  word(0),           word(time.day),
                               word(time.hour), word(time.minute), word(time.second), word(time.millisecond)};
        SYSTEMTIME utc;
        FILETIME stamp;
        if (!TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) || !SystemTimeToFileTime(&utc, &stamp))
            return std::nullopt;
        return static_cast<std::uint64_t>(stamp.dwHighDateTime) << 32 | stamp.dwLowDateTime;
    }
};

}  // namespace

const time_zone& time_zone::local() {
    static const system_zone zone;
    return zone;
}

/// Windows names its zones in its own way.
std::unique_ptr<const time_zone> time_zone::load(const std::string& /*name*/) { return nullptr; }

}  // namespace quorvel
