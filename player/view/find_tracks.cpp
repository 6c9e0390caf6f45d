#include "player/view/find_tracks.h"

#include <algorithm>
#include <chrono>

#include "player/query/query.h"
#include "player/view/known_fields.h"
#include "player/view/track_order.h"

namespace ostrevan::view {

metadb_handle_list find_tracks(const library::media_library& library, const titleformat::component_fields& fields,
                               const std::string& text) {
    const auto wanted = query::parse(text);
    check_fields(wanted, text, library, fields);
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const auto limit = wanted.limit().value_or(library.items().size());
    std::vector<metadb_handle_ptr> found;
    for (const auto& track : library.items()) {
        if (!wanted.sort() && found.size() == limit) break;
        if (wanted.matches(titleformat::track_fields(fields, *track), now)) found.emplace_back(track);
    }

    metadb_handle_list tracks(std::move(found));
    if (wanted.sort()) tracks = sorted_by(*wanted.sort(), tracks, fields);
    tracks.items().resize(std::min(tracks.items().size(), limit));
    return tracks;
}

}  // namespace ostrevan::view
