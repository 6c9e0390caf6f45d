#include "player/services/metadb.h"

#include "player/library/locations.h"

namespace ostrevan::services {

metadb_handle_ptr metadb_impl::handle_create(const playable_location& location) {
    return metadb_handle_ptr(tracks_.obtain(library::normal_path(location.path), location.subsong));
}

}  // namespace ostrevan::services
