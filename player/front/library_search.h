#pragma once

#include <string>

#include "ostrevan/library_search.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/front/front_end.h"
#include "player/library/media_library.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::front {

/// The tracks that a query matches among all tracks of the library, in its order of sorting, else by location. Throws
/// `query::query_error` when the query has a mistake.
metadb_handle_list find_tracks(const library::media_library& library, const titleformat::component_fields& fields,
                               const std::string& query);

/// The library's search for components: shows what a query matches with the columns of a list.
class library_search_impl : public library_search {
public:
    library_search_impl(const main_loop& loop, front_end& ui, const service_registry& services,
                        const library::media_library& library, const titleformat::component_fields& fields)
        : loop_(loop), ui_(ui), services_(services), library_(library), fields_(fields) {}
    void show(const char* query) override;

private:
    const main_loop& loop_;
    front_end& ui_;
    const service_registry& services_;
    const library::media_library& library_;
    const titleformat::component_fields& fields_;
};

}  // namespace ostrevan::front
