#pragma once

#include "ostrevan/metadb.h"
#include "player/library/track_table.h"

namespace ostrevan::services {

/// Track handles for components; any form of a path leads to the library's handle.
class metadb_impl : public metadb {
public:
    explicit metadb_impl(library::track_table& tracks) : tracks_(tracks) {}
    [[nodiscard]] metadb_handle_ptr handle_create(const playable_location& location) override;
    service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == metadb_serials::class_guid ? &serials_ : nullptr;
    }

private:
    class serials : public metadb_serials {
    public:
        /// Every handle of this player is a `library::track`.
        [[nodiscard]] std::uint64_t serial_of(const metadb_handle& track) const noexcept override {
            return static_cast<const library::track&>(track).info_serial();
        }
    };

    library::track_table& tracks_;
    service_uncounted_t<serials> serials_;
};

}  // namespace ostrevan::services
