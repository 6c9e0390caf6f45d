#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ostrevan::history {

/// What a track is called.
struct track_name {
    std::string artist{}, album{}, title{};
};

/// Only letters and digits, without case and accents.
std::string folded(std::string_view text);

/// Finds tracks with similar names. Two of the three parts have to be the same when folded.
class similar_tracks {
public:
    struct match {
        std::size_t place;  ///< in the list
        bool is_exact;      ///< all three parts are the same when folded
    };

    /// The places of the tracks are those in the list.
    explicit similar_tracks(std::span<const track_name> tracks);
    /// The most similar ones, the best first.
    [[nodiscard]] std::vector<match> find(const track_name& wanted, std::size_t at_most) const;

private:
    using parts = std::array<std::string, 3>;  // folded: artist, album, title

    static parts parts_of(const track_name& name);
    static std::uint64_t hash_without(const parts& of, std::size_t left_out);

    std::vector<parts> tracks_;
    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> by_two_parts_;
};

}  // namespace ostrevan::history
