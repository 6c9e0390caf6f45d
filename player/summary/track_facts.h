#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ostrevan/track.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::summary {

/// What is known of a track without its listens. The numbers come from the documented fields of the statistics; without
/// such a field, they are those of a track that was never played.
struct track_facts {
    metadb_handle_ptr track{};
    std::string artist{}, title{}, album{};
    std::string album_artist{};     // empty when the tracks of the album may differ in it
    std::string album_in_folder{};  // the same for all tracks of the album, and for no others
    std::uint64_t plays = 0;
    std::optional<std::chrono::sys_seconds> added{}, last_played{};
    std::size_t stars = 0;  // 0 when not rated
};

/// Tracks by their statistics: those with the same key are one.
class track_set {
public:
    using key_finder = std::function<std::optional<std::uint64_t>(const metadb_handle& track)>;

    track_set(std::span<const metadb_handle_ptr> tracks, const titleformat::component_fields& fields,
              const key_finder& key_of);

    [[nodiscard]] const std::vector<track_facts>& facts() const noexcept { return facts_; }
    [[nodiscard]] bool has(std::uint64_t key) const { return by_key_.contains(key); }
    /// The place in `facts` of the track with a key or, since tags may have changed meanwhile, at a location.
    [[nodiscard]] std::optional<std::size_t> find(const std::optional<std::uint64_t>& key, std::string_view path,
                                                  std::uint32_t subsong) const;

private:
    std::vector<track_facts> facts_;
    std::unordered_map<std::uint64_t, std::size_t> by_key_;
    std::unordered_map<std::string, std::size_t> by_location_;
};

}  // namespace ostrevan::summary
