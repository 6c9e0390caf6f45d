#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// Where track handles come from. [any-thread]
class metadb : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{2B6B7C67-7C1B-4C7B-8B52-0F5D8E2C4A16}");

    /// The one handle of a location, as the user or a file names it: made when it is new to the player, without reading
    /// anything.
    [[nodiscard]] virtual metadb_handle_ptr handle_create(const playable_location& location) = 0;
};

/// Extension of the metadb, found by `service_query`. [any-thread]
class metadb_serials : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{6E0C9B1D-3C52-4B0F-9A77-D1B5E84C20F3}");

    /// The serial of the snapshot in force, 0 when there is none. Needs no snapshot, which the player may have to read from
    /// the disk.
    [[nodiscard]] virtual std::uint64_t serial_of(const metadb_handle& track) const noexcept = 0;
};

}  // namespace ostrevan
