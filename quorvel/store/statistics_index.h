#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ostrevan/index.h"
#include "quorvel/store/record.h"

namespace quorvel {

/// The player's index between its registration and the end of the component. [main-thread]
namespace statistics_index {
void open(ostrevan::index_manager& manager) noexcept;
void close() noexcept;
}  // namespace statistics_index

/// The index manager, or null while the statistics index is not registered. It lives until the process ends. [any-thread]
[[nodiscard]] ostrevan::index_manager* opened_index() noexcept;

/// The record in one of the component's indexes; nothing if there is none, or a blob of another size. Throws when it cannot
/// be read. [any-thread]
[[nodiscard]] std::optional<t_playback_stats> find_record(const ostrevan::index_manager& manager, const nuv::guid& index,
                                                          std::uint64_t key);

/// The stored record, or the default record if there is none. Nothing without an index, or if what it holds cannot be read:
/// for callers that would destroy something if they took that for a track without statistics. [any-thread]
[[nodiscard]] std::optional<t_playback_stats> known_record(std::uint64_t key) noexcept;

/// The default record on any problem: for callers that only show it. [any-thread]
[[nodiscard]] inline t_playback_stats read_record(std::uint64_t key) noexcept {
    return known_record(key).value_or(t_playback_stats{});
}

/// Redraws what shows these keys: at once on the main thread, from other threads by a post to it, and not at all while the
/// player shuts down. [any-thread]
void refresh_keys(std::vector<std::uint64_t> keys);

/// Asks the player for a copy of the index before a change that nobody could take back, with a copy of a file beside it
/// (null for none). Does nothing when the player has no such service; throws when the service fails. [main-thread]
void back_up_index(const char* reason, const char* beside);

}  // namespace quorvel
