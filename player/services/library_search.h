#pragma once

#include <string>

#include "ostrevan/library_search.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/library/media_library.h"
#include "player/titleformat/track_fields.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// The library search for components: shows the tracks that match a query, with the default columns.
class library_search_impl : public library_search {
public:
    library_search_impl(core::main_loop& loop, view::front_end& ui, const core::service_registry& services,
                        const library::media_library& library, const titleformat::component_fields& fields)
        : loop_(loop), ui_(ui), services_(services), library_(library), fields_(fields) {}
    void show(const char* query) override;

private:
    core::main_loop& loop_;
    view::front_end& ui_;
    const core::service_registry& services_;
    const library::media_library& library_;
    const titleformat::component_fields& fields_;
};

}  // namespace ostrevan::services
