#include "player/view/track_order.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "player/query/sort.h"
#include "player/titleformat/integer.h"

namespace ostrevan::view {
namespace {

std::string_view value_of(const file_info& info, const char* field) {
    const auto index = info.meta_find(field);
    if (index == file_info::npos || info.meta_value_count(index) == 0) return {};
    return info.meta_value(index, 0);
}

struct listening_place {
    std::string folder{};
    std::string album{};
    std::int64_t disc = 1;
    std::int64_t number = std::numeric_limits<std::int64_t>::max();
    std::string name{};
    std::uint32_t subsong = 0;

    auto operator<=>(const listening_place&) const = default;
};

listening_place place_of(const metadb_handle& track) {
    const auto& [path, subsong] = track.location();
    const auto slash = path.rfind('/') + 1;
    listening_place place{.folder = query::natural_key(path.substr(0, slash)),
                          .name = query::natural_key(path.substr(slash)),
                          .subsong = subsong};
    if (const auto info = track.info()) {
        place.album = query::natural_key(value_of(info->info(), "album"));
        place.disc = titleformat::leading_integer(value_of(info->info(), "discnumber")).value_or(place.disc);
        place.number = titleformat::leading_integer(value_of(info->info(), "tracknumber")).value_or(place.number);
    }
    return place;
}

}  // namespace

metadb_handle_list sorted_by(const query::sort_order& order, const metadb_handle_list& tracks,
                             const titleformat::component_fields& fields) {
    std::vector<query::sort_entry> entries;
    entries.reserve(tracks.get_count());
    for (const auto& track : tracks)
        entries.push_back(query::entry_of(order, entries.size(), titleformat::track_fields(fields, *track)));
    query::sort_naturally(entries, order.descending);
    metadb_handle_list sorted;
    sorted.items().reserve(entries.size());
    for (const auto& entry : entries) sorted.items().push_back(tracks[entry.index]);
    return sorted;
}

void sort_for_listening(std::vector<metadb_handle_ptr>& tracks) {
    std::vector<std::pair<listening_place, metadb_handle_ptr>> placed;
    placed.reserve(tracks.size());
    for (auto& track : tracks) placed.emplace_back(place_of(*track), track);
    std::ranges::stable_sort(placed, {}, [](const auto& each) -> const listening_place& { return each.first; });
    std::ranges::transform(placed, tracks.begin(), [](auto& each) { return std::move(each.second); });
}

}  // namespace ostrevan::view
