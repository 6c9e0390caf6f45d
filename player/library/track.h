#pragma once

#include <atomic>
#include <cstdint>

#include "ostrevan/track.h"

namespace ostrevan::library {

/// The player's snapshot of track information.
class info_snapshot : public metadb_info {
public:
    explicit info_snapshot(file_info info) noexcept : metadb_info(std::move(info)) {}
};

metadb_info_ptr make_snapshot(file_info info);

/// Information about a track of a known file.
struct track_snapshot {
    std::uint32_t subsong = 0;
    metadb_info_ptr info;
};

/// The player's track handle. [any-thread]
class track : public metadb_handle {
public:
    explicit track(playable_location location) : location_(std::move(location)) {}

    [[nodiscard]] const playable_location& location() const noexcept override { return location_; }
    [[nodiscard]] metadb_info_ptr info() const override;

    [[nodiscard]] bool has_info() const noexcept;
    void publish(metadb_info_ptr snapshot);

private:
    class spin_guard;

    const playable_location location_;
    // Held for a few instructions only, to copy or exchange a pointer.
    mutable std::atomic_flag lock_;
    metadb_info_ptr info_;
};
using track_ptr = service_ptr_t<track>;

}  // namespace ostrevan::library
