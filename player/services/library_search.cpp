#include "player/services/library_search.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include "player/view/find_tracks.h"
#include "player/view/track_listing.h"

namespace ostrevan::services {

void library_search_impl::show(const char* query) {
    core::check_main_thread("library_search::show");
    if (!library_.is_enabled())
        throw std::runtime_error("The library has no folder yet: add one with 'ostrevan library add FOLDER'.");
    const auto items = library_.unordered_items();
    auto wanted = view::parse_query(*items, fields_, query);
    loop_.start_thread([this, items, wanted = std::move(wanted), columns = view::default_columns(services_)] {
        auto found = view::listing_of(view::find_tracks(*items, fields_, wanted), columns, fields_);
        loop_.post([this, found = std::move(found)] { ui_.show_listing(found); });
    });
}

}  // namespace ostrevan::services
