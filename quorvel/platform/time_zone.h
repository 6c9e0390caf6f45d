#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quorvel {

/// A moment on a calendar and a clock. Months and days count from 1.
struct civil_time {
    std::int32_t year = 1601;
    std::int32_t month = 1;
    std::int32_t day = 1;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t millisecond = 0;

    bool operator==(const civil_time&) const = default;
};

/// Local time and back. Times count 100 ns since 1601-01-01 UTC. [any-thread], without a lock.
class time_zone {
public:
    virtual ~time_zone() = default;

    /// Empty for times of 2^63 and above and for years above 30827.
    [[nodiscard]] virtual std::optional<civil_time> to_local(std::uint64_t time) const noexcept = 0;
    /// Empty when there is no such date or it lies before 1601 in UTC. A time that a clock change skips is read with the
    /// offset after the change; one that occurs twice is the first.
    [[nodiscard]] virtual std::optional<std::uint64_t> to_utc(const civil_time& local) const noexcept = 0;

    /// The user's zone. UTC when it cannot be read.
    static const time_zone& local();
    /// A zone by its name in the system's database ("America/Los_Angeles", on Windows "Pacific Standard Time"); null when
    /// there is none.
    static std::unique_ptr<const time_zone> load(const std::string& name);
};

}  // namespace quorvel
