#include "player/front/library_search.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "player/front/known_fields.h"
#include "player/front/track_listing.h"
#include "player/front/track_order.h"
#include "player/query/query.h"

namespace ostrevan::front {

metadb_handle_list find_tracks(const library::media_library& library, const titleformat::component_fields& fields,
                               const std::string& text) {
    const auto wanted = query::parse(text);
    check_fields(wanted, text, library, fields);
    const auto clock =
        query::query_clock::local_at(std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()));
    const auto limit = wanted.limit().value_or(library.items().size());
    std::vector<metadb_handle_ptr> found;
    for (const auto& track : library.items()) {
        if (!wanted.sort() && found.size() == limit) break;
        if (wanted.matches(titleformat::track_fields(fields, *track), clock)) found.emplace_back(track);
    }

    metadb_handle_list tracks(std::move(found));
    if (wanted.sort()) tracks = sorted_by(*wanted.sort(), tracks, fields);
    tracks.items().resize(std::min(tracks.items().size(), limit));
    return tracks;
}

void library_search_impl::show(const char* query) {
    check_main_thread(loop_, "library_search::show");
    if (!library_.is_enabled())
        throw std::runtime_error("The library has no folder yet: add one with 'ostrevan library add FOLDER'.");
    ui_.show_listing(listing_of(find_tracks(library_, fields_, query), default_columns(services_), fields_));
}

}  // namespace ostrevan::front
