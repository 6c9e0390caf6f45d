#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "nuv/list.h"
#include "ostrevan/file_info.h"
#include "ostrevan/service.h"

namespace ostrevan {

/// Where a track is: a local path or `protocol://...`, and the subsong inside it (0 for files with one track).
struct playable_location {
    std::string path;
    std::uint32_t subsong = 0;

    auto operator<=>(const playable_location&) const = default;
};

/// What was known of one track at one moment. It never changes; an edit publishes a new snapshot. The player makes them.
class metadb_info : public service_base {
public:
    [[nodiscard]] const file_info& info() const noexcept { return info_; }
    /// Never 0. Snapshots with the same serial are of one track and say the same, so what was computed from a snapshot can
    /// be remembered by it without holding a reference.
    [[nodiscard]] std::uint64_t serial() const noexcept { return serial_; }

protected:
    explicit metadb_info(file_info info) noexcept : metadb_info(std::move(info), take_serials(1)) {}
    metadb_info(file_info info, std::uint64_t serial) noexcept : info_(std::move(info)), serial_(serial) {}

    /// The first of so many serials that were never given.
    static std::uint64_t take_serials(std::uint64_t count) noexcept {
        static constinit std::atomic<std::uint64_t> next{1};
        return next.fetch_add(count, std::memory_order_relaxed);
    }

private:
    const file_info info_;
    const std::uint64_t serial_;
};
using metadb_info_ptr = service_ptr_t<metadb_info>;

/// A track known to the player. There is one handle for one location, so two handles are the same track exactly when the
/// pointers are equal.
class metadb_handle : public service_base {
public:
    /// Never changes and lives as long as the handle. [any-thread]
    [[nodiscard]] virtual const playable_location& location() const noexcept = 0;

    /// The snapshot in force, or empty when the player holds no information for the track. [any-thread]
    [[nodiscard]] virtual metadb_info_ptr info() const = 0;
};
using metadb_handle_ptr = service_ptr_t<metadb_handle>;
using metadb_handle_list = nuv::list_t<metadb_handle_ptr>;
using metadb_handle_list_cref = const nuv::list_base_const_t<metadb_handle_ptr>&;

}  // namespace ostrevan
