#include "quorvel/store/key.h"

#include <array>
#include <atomic>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/metadb.h"
#include "quorvel/store/key_memory.h"
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

/// Finds serials without reading tags; null when the player has no such service. It lives until the process ends.
constinit std::atomic<const ostrevan::metadb_serials*> serials{nullptr};

std::uint64_t serial_of(const ostrevan::metadb_handle& track) {
    if (const auto* const known = serials.load(std::memory_order_acquire)) return known->serial_of(track);
    const auto snapshot = track.info();
    return snapshot ? snapshot->serial() : 0;
}

/// The keys of all snapshots seen so far: 8 bytes take the place of a digest.
constinit key_memory remembered;

}  // namespace

std::span<const nuv::guid> mapping_guids() noexcept { return ids_of_table; }

index_client_ptr FindMapping(const nuv::guid& mapping) {
    for (const auto& row : mapping_table)
        if (row.id == mapping) return row.create();
    return {};
}

std::optional<std::uint64_t> KeyOf(const ostrevan::metadb_handle& track) {
    if (active.load(std::memory_order_acquire) == nullptr) return std::nullopt;
    if (const auto known = remembered.find(serial_of(track)); known != 0) return known;
    const auto snapshot = track.info();
    if (!snapshot) return std::nullopt;
    const auto key = KeyOf(snapshot->info(), track.location());
    if (key) RememberKey(snapshot->serial(), *key);
    return key;
}

std::optional<std::uint64_t> KeyOf(const ostrevan::file_info& info, const ostrevan::playable_location& location) {
    auto* const mapping = active.load(std::memory_order_acquire);
    if (mapping == nullptr) return std::nullopt;
    return mapping->key_of(info, location);
}

void RememberKey(std::uint64_t serial, std::uint64_t key) { remembered.set(serial, key); }

namespace active_mapping {

index_client_ptr start() {
    auto mapping = FindMapping(active_mapping_guid);
    key_functions.push_back(mapping);
    if (const auto metadb = ostrevan::find_service<ostrevan::metadb>())
        serials.store(ostrevan::query_service<ostrevan::metadb_serials>(*metadb).get(), std::memory_order_release);
    active.store(mapping.get(), std::memory_order_release);
    return mapping;
}

void stop() noexcept {
    active.store(nullptr, std::memory_order_release);
    serials.store(nullptr, std::memory_order_release);
}

}  // namespace active_mapping

}  // namespace quorvel
