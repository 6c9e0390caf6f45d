#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace ostrevan::playback {

enum class shuffle_mode { off, tracks, albums };

/// What shuffling knows of a track.
struct shuffle_traits {
    /// A track without a name here is an album of its own.
    std::string album{};
    /// Above 0: the track with the larger weight tends to come earlier, an album by the mean of its tracks.
    double weight = 1;
};

/// The entries in a random order; `traits` are by entry. Albums stay together and in the order given when the mode says so.
/// Without weights, every order is equally likely.
std::vector<std::uint32_t> shuffled(std::span<const std::uint32_t> entries, std::span<const shuffle_traits> traits,
                                    shuffle_mode mode, std::mt19937_64& random, bool by_weights = true);

}  // namespace ostrevan::playback
