#include "player/playback/shuffling.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace ostrevan::playback {
namespace {

using group = std::vector<std::uint32_t>;

std::vector<group> groups_of(std::span<const std::uint32_t> entries, std::span<const shuffle_traits> traits,
                             shuffle_mode mode) {
    std::vector<group> groups;
    std::map<std::string_view, std::size_t> known;
    for (const auto entry : entries) {
        const auto& album = traits[entry].album;
        const bool is_alone = mode != shuffle_mode::albums || album.empty();
        const auto at = is_alone ? groups.size() : known.try_emplace(album, groups.size()).first->second;
        if (at == groups.size()) groups.emplace_back();
        groups[at].push_back(entry);
    }
    return groups;
}

}  // namespace

/// Each group waits for a random time, exponentially distributed with its weight as the rate: the next one is always drawn
/// by the weights of those left.
std::vector<std::uint32_t> shuffled(std::span<const std::uint32_t> entries, std::span<const shuffle_traits> traits,
                                    shuffle_mode mode, std::mt19937_64& random, bool by_weights) {
    const auto groups = groups_of(entries, traits, mode);
    std::exponential_distribution<double> wait;
    std::vector<std::pair<double, const group*>> due;
    for (const auto& each : groups) {
        double sum = 0;
        for (const auto entry : each) sum += by_weights ? traits[entry].weight : 1;
        due.emplace_back(wait(random) * static_cast<double>(each.size()) / sum, &each);
    }
    std::ranges::sort(due);
    group result;
    for (const auto& [time, each] : due) result.insert(result.end(), each->begin(), each->end());
    return result;
}

}  // namespace ostrevan::playback
