#pragma once

#include "ostrevan/metadb.h"
#include "player/library/track_table.h"

namespace ostrevan::services {

/// Track handles for components; any form of a path leads to the library's handle.
class metadb_impl : public metadb {
public:
    explicit metadb_impl(library::track_table& tracks) : tracks_(tracks) {}
    [[nodiscard]] metadb_handle_ptr handle_create(const playable_location& location) override;

private:
    library::track_table& tracks_;
};

}  // namespace ostrevan::services
