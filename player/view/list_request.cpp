#include "player/view/list_request.h"

#include <algorithm>
#include <ranges>
#include <utility>

#include "player/view/find_tracks.h"
#include "player/view/track_order.h"

namespace ostrevan::view {

namespace {

metadb_handle_list all_tracks(const library::media_library& library, const list_request& wanted) {
    if (wanted.among) return *wanted.among;
    // A search puts them into its own order.
    if (!wanted.find.empty()) return metadb_handle_list(*library.unordered_items());
    const auto items = library.sorted_items();
    return metadb_handle_list(std::vector<metadb_handle_ptr>(items->begin(), items->end()));
}

}  // namespace

void sort_by(list_request& request, const std::string& column) {
    constexpr std::size_t most = 3;
    auto& keys = request.sort;
    list_request::key first{column, !keys.empty() && keys.front().column == column && !keys.front().descending};
    std::erase_if(keys, [&](const auto& each) { return each.column == column; });
    keys.insert(keys.begin(), std::move(first));
    keys.resize(std::min(keys.size(), most));
}

metadb_handle_list make_list(const library::media_library& library, const titleformat::component_fields& fields,
                             const std::vector<column>& columns, const list_request& wanted) {
    auto tracks = all_tracks(library, wanted);
    if (!wanted.find.empty()) tracks = find_tracks(tracks.items(), fields, parse_query(tracks.items(), fields, wanted.find));
    // Sorting keeps the order of equals, so the most important key comes last.
    for (const auto& key : std::views::reverse(wanted.sort)) {
        const auto by = std::ranges::find(columns, key.column, &column::id);
        if (by != columns.end()) tracks = sorted_by({titleformat::compile(by->sort_script), key.descending}, tracks, fields);
    }
    return tracks;
}

double total_length(const metadb_handle_list& tracks, const std::atomic<bool>& is_stale) {
    double seconds = 0;
    for (const auto& track : tracks) {
        if (is_stale) break;
        if (const auto info = track->info()) seconds += std::max(info->info().length(), 0.0);
    }
    return seconds;
}

}  // namespace ostrevan::view
