#include "player/services/library_search.h"

#include <stdexcept>

#include "player/core/main_loop.h"
#include "player/view/find_tracks.h"
#include "player/view/track_listing.h"

namespace ostrevan::services {

void library_search_impl::show(const char* query) {
    core::check_main_thread("library_search::show");
    if (!library_.is_enabled())
        throw std::runtime_error("The library has no folder yet: add one with 'ostrevan library add FOLDER'.");
    ui_.show_listing(
        view::listing_of(view::find_tracks(library_, fields_, query), view::default_columns(services_), fields_));
}

}  // namespace ostrevan::services
