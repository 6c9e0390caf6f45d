#include "quorvel/store/key.h"

#include <array>
#include <atomic>
#include <vector>

#include "ostrevan/core_api.h"
#include "quorvel/store/mappings.h"

namespace quorvel {
namespace {

using ostrevan::index_client;
using ostrevan::index_client_ptr;

template <typename Mapping>
index_client_ptr create_mapping() {
    return ostrevan::service_new<Mapping>(*ostrevan::get_service<ostrevan::hash_service>());
}

struct mapping_row {
    nuv::guid id;
    index_client_ptr (*create)();
};
constexpr std::array<mapping_row, 3> mapping_table{{
    {title_mapping_guid, &create_mapping<TitleMapping>},
    {legacy_track_mapping_guid, &create_mapping<LegacyTrackMapping>},
    {repeated_track_mapping_guid, &create_mapping<RepeatedTrackMapping>},
}};
constexpr auto ids_of_table = [] {
    std::array<nuv::guid, mapping_table.size()> ids;
    for (std::size_t i = 0; i < ids.size(); ++i) ids[i] = mapping_table[i].id;
    return ids;
}();

constinit std::atomic<index_client*> active{nullptr};

/// Kept until the module is unloaded: other threads may still be inside one that is no longer active.
std::vector<index_client_ptr> key_functions;

/// The last key that a thread computed. Plain numbers, because an object with a destructor would keep the module loaded for
/// as long as the thread lives.
struct remembered_key {
    const index_client* mapping;
    std::uint64_t snapshot;
    std::uint64_t key;
};
constinit thread_local remembered_key last_key{};

}  // namespace

std::span<const nuv::guid> mapping_guids() noexcept { return ids_of_table; }

index_client_ptr FindMapping(const nuv::guid& mapping) {
    for (const auto& row : mapping_table)
        if (row.id == mapping) return row.create();
    return {};
}

std::optional<std::uint64_t> KeyOf(const ostrevan::metadb_handle& track) {
    auto* const mapping = active.load(std::memory_order_acquire);
    if (mapping == nullptr) return std::nullopt;
    const auto snapshot = track.info();
    if (!snapshot) return std::nullopt;

    auto& last = last_key;
    if (last.snapshot != snapshot->serial() || last.mapping != mapping)
        last = {mapping, snapshot->serial(), mapping->key_of(snapshot->info(), track.location())};
    return last.key;
}

std::optional<std::uint64_t> ComputeKeyOf(const ostrevan::metadb_handle& track) {
    const auto snapshot = track.info();
    return snapshot ? KeyOf(snapshot->info(), track.location()) : std::nullopt;
}

std::optional<std::uint64_t> KeyOf(const ostrevan::file_info& info, const ostrevan::playable_location& location) {
    auto* const mapping = active.load(std::memory_order_acquire);
    if (mapping == nullptr) return std::nullopt;
    return mapping->key_of(info, location);
}

namespace active_mapping {

index_client_ptr start() {
    auto mapping = FindMapping(active_mapping_guid);
    key_functions.push_back(mapping);
    active.store(mapping.get(), std::memory_order_release);
    return mapping;
}

void stop() noexcept { active.store(nullptr, std::memory_order_release); }

}  // namespace active_mapping

}  // namespace quorvel
