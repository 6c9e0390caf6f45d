#include "player/view/find_tracks.h"

#include <algorithm>
#include <chrono>

#include "player/library/location_order.h"
#include "player/view/known_fields.h"
#include "player/view/track_order.h"

namespace ostrevan::view {

query::query parse_query(const std::vector<metadb_handle_ptr>& items, const titleformat::component_fields& fields,
                         const std::string& text) {
    auto wanted = query::parse(text);
    check_fields(wanted, text, items, fields);
    return wanted;
}

metadb_handle_list find_tracks(const std::vector<metadb_handle_ptr>& items, const titleformat::component_fields& fields,
                               const query::query& wanted) {
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const auto limit = wanted.limit().value_or(items.size());
    std::vector<metadb_handle_ptr> found;
    for (const auto& track : items)
        if (wanted.matches(titleformat::track_fields(fields, *track), now)) found.push_back(track);
    library::sort_by_location(found);

    metadb_handle_list tracks(std::move(found));
    if (wanted.sort()) tracks = sorted_by(*wanted.sort(), tracks, fields);
    tracks.items().resize(std::min(tracks.items().size(), limit));
    return tracks;
}

}  // namespace ostrevan::view
