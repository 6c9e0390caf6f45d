#include "player/view/nearest.h"

#include <algorithm>

#include "nuv/text.h"

namespace ostrevan::view {
namespace {

/// Edit distance: bytes changed, inserted, removed, or swapped with their neighbour.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    const auto same = [&](std::size_t i, std::size_t j) { return nuv::ascii_lower(a[i - 1]) == nuv::ascii_lower(b[j - 1]); };
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (same(i, j) ? 0 : 1)});
            if (i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j)) d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    }
    return d[a.size()][b.size()];
}

/// Distance to the whole candidate or its first word, else to a later word plus one.
std::size_t distance_in(std::string_view word, std::string_view candidate) {
    auto least = distance(word, candidate);
    for (std::size_t start = 0, end = 0; end < candidate.size(); start = end + 1) {
        end = std::min(candidate.find(' ', start), candidate.size());
        least = std::min(least, distance(word, candidate.substr(start, end - start)) + (start == 0 ? 0 : 1));
    }
    return least;
}

}  // namespace

std::string did_you_mean(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t longest = 100;
    const std::string* nearest = nullptr;
    // Allows one mistake in a short word, one per three letters of a long one.
    std::size_t least = std::max<std::size_t>(2, word.size() / 3 + 1);
    for (const auto& candidate : candidates) {
        if (word.size() > longest || candidate.size() > longest) continue;
        const bool begins =
            word.size() >= 3 && nuv::equal_ascii_nocase(std::string_view(candidate).substr(0, word.size()), word);
        const auto mistakes = begins ? 1 : distance_in(word, candidate);
        if (mistakes >= least) continue;
        least = mistakes;
        nearest = &candidate;
    }
    return nearest == nullptr ? std::string() : " Did you mean \"" + *nearest + "\"?";
}

}  // namespace ostrevan::view
