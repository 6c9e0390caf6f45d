#include "player/app/changed_records.h"

#include <algorithm>

#include "player/core/component_call.h"

namespace ostrevan::app {
namespace {

using services::index_manager_impl;

std::optional<index_manager_impl::registration> registration_of(const session& player, const nuv::guid& index) {
    const auto all = player.index.registrations();
    const auto found = std::ranges::find(all, index, &index_manager_impl::registration::index);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

std::vector<keyed_track> tracks_with_keys(session& player, const nuv::guid& index, std::vector<std::uint64_t> keys) {
    std::ranges::sort(keys);
    std::vector<keyed_track> found;
    const auto registered = registration_of(player, index);
    if (!registered || keys.empty()) return found;
    const auto items = player.library.sorted_items();
    for (const auto& track : *items)
        if (const auto key = index_manager_impl::key_of(*registered, *track))
            if (std::ranges::binary_search(keys, *key)) found.push_back({metadb_handle_ptr(track), *key});
    return found;
}

void tell_of_changed_records(session& player, const nuv::guid& index, const std::vector<std::uint64_t>& keys) {
    player.loop.call([&] { player.index.refresh(index, nuv::list_view_t<std::uint64_t>(keys)); });
    const auto registered = registration_of(player, index);
    if (!registered) return;
    auto* const editing = query_service<index_record_editing>(*registered->client).get();
    if (editing == nullptr) return;
    metadb_handle_list tracks;
    for (auto& each : tracks_with_keys(player, index, keys)) tracks.items().push_back(std::move(each.track));
    if (tracks.empty()) return;
    player.loop.call([&] { core::call_component(*editing, [&] { editing->on_records_changed(tracks); }); });
}

}  // namespace ostrevan::app
