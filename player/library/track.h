#pragma once

#include <atomic>
#include <cstdint>

#include "ostrevan/track.h"

namespace ostrevan::library {

/// The player's snapshot of track information.
class info_snapshot : public metadb_info {
public:
    explicit info_snapshot(file_info info) noexcept : metadb_info(std::move(info)) {}
    info_snapshot(file_info info, std::uint64_t serial) noexcept : metadb_info(std::move(info), serial) {}
    using metadb_info::take_serials;
};

metadb_info_ptr make_snapshot(file_info info);

/// Information about a track of a known file.
struct track_snapshot {
    std::uint32_t subsong = 0;
    metadb_info_ptr info;
};

class stored_infos;

/// The player's track handle. Its information may still be in the library's database. [any-thread]
class track : public metadb_handle {
public:
    explicit track(playable_location location) : location_(std::move(location)) {}

    [[nodiscard]] const playable_location& location() const noexcept override { return location_; }
    [[nodiscard]] metadb_info_ptr info() const override;

    /// The serial of that snapshot, known before it is read; 0 when there is none.
    [[nodiscard]] std::uint64_t info_serial() const noexcept;

    [[nodiscard]] bool has_info() const { return static_cast<bool>(info()); }
    void publish(metadb_info_ptr snapshot);

    /// From now on the information is found there, under this number, unless the handle has some.
    void leave_stored(stored_infos& in, std::uint32_t number);
    void forget_stored();
    /// Keeps what was stored, unless something newer was published.
    void hold(metadb_info_ptr stored);
    /// Call it before the stored information changes.
    void hold_info();

private:
    class spin_guard;

    const playable_location location_;
    // Held for a few instructions only, to copy or exchange a pointer.
    mutable std::atomic_flag lock_;
    std::uint32_t number_ = 0;  // in `stored_`
    stored_infos* stored_ = nullptr;
    metadb_info_ptr info_;
};
using track_ptr = service_ptr_t<track>;

}  // namespace ostrevan::library
