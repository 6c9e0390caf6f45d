#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "ostrevan/index.h"
#include "ostrevan/track.h"

namespace quorvel {

/// Rules that make the key of a track from its tags. The active one also names the statistics index; the others are kept to
/// match what was stored or exported under them.
inline constexpr nuv::guid title_mapping_guid = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
inline constexpr nuv::guid legacy_track_mapping_guid = nuv::guid_of("{163FC58C-E2D5-4D3D-BFA4-45AF2C28AC1C}");
inline constexpr nuv::guid repeated_track_mapping_guid = nuv::guid_of("{6370B286-BE93-4A7C-AA3B-281FEC61B182}");
inline constexpr nuv::guid active_mapping_guid = title_mapping_guid;
inline constexpr nuv::guid statistics_index_guid = active_mapping_guid;

/// Every mapping, the active one first.
[[nodiscard]] std::span<const nuv::guid> mapping_guids() noexcept;

/// A new key function of this mapping; empty if there is no such mapping. Throws when the player has no hash service.
/// [any-thread]
[[nodiscard]] ostrevan::index_client_ptr FindMapping(const nuv::guid& mapping);

/// The key of a track under the active mapping. None if the player holds no information for the track, or before start and
/// after stop. Remembered by snapshot. [any-thread]
[[nodiscard]] std::optional<std::uint64_t> KeyOf(const ostrevan::metadb_handle& track);

/// The same for other tags than those that the player holds for the track. [any-thread]
[[nodiscard]] std::optional<std::uint64_t> KeyOf(const ostrevan::file_info& info,
                                                 const ostrevan::playable_location& location);

/// Remembers the key of a snapshot under the active mapping. [any-thread]
void RememberKey(std::uint64_t serial, std::uint64_t key);

/// The process-wide key function. `start` throws when the player has no hash service. [main-thread]
namespace active_mapping {
ostrevan::index_client_ptr start();
void stop() noexcept;
}  // namespace active_mapping

}  // namespace quorvel
