#include "player/history/similar_tracks.h"

#include <utf8proc.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace ostrevan::history {
namespace {

/// Of a large group with the same two parts, such as tracks without an artist and album, only so many are compared.
constexpr std::size_t most_compared = 256;

constexpr std::size_t title_part = 2;

bool is_letter_or_digit(utf8proc_int32_t code) {
    const auto category = utf8proc_category(code);
    return (category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_LO) ||
           (category >= UTF8PROC_CATEGORY_ND && category <= UTF8PROC_CATEGORY_NO);
}

std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const auto substituted = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = std::exchange(row[j + 1], std::min({row[j] + 1, row[j + 1] + 1, substituted}));
        }
    }
    return row.back();
}

/// From 0, equal, to 1.
double difference(std::string_view a, std::string_view b) {
    constexpr std::size_t compared_length = 128;  // the work grows with its square
    a = a.substr(0, compared_length);
    b = b.substr(0, compared_length);
    const auto longest = std::max(a.size(), b.size());
    return longest == 0 ? 0 : static_cast<double>(edit_distance(a, b)) / static_cast<double>(longest);
}

}  // namespace

std::string folded(std::string_view text) {
    std::string plain;
    utf8proc_uint8_t* mapped = nullptr;
    constexpr auto how = static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT | UTF8PROC_CASEFOLD |
                                                        UTF8PROC_STRIPMARK | UTF8PROC_IGNORE);
    const auto size = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                   static_cast<utf8proc_ssize_t>(text.size()), &mapped, how);
    if (size < 0) return std::string(text);  // no UTF-8
    for (utf8proc_ssize_t at = 0; at < size;) {
        utf8proc_int32_t code = 0;
        const auto length = utf8proc_iterate(mapped + at, size - at, &code);
        if (is_letter_or_digit(code))
            plain.append(reinterpret_cast<const char*>(mapped + at), static_cast<std::size_t>(length));
        at += length;
    }
    std::free(mapped);
    return plain;
}

similar_tracks::parts similar_tracks::parts_of(const track_name& name) {
    return {folded(name.artist), folded(name.album), folded(name.title)};
}

std::uint64_t similar_tracks::hash_without(const parts& of, std::size_t left_out) {
    const std::hash<std::string_view> hash;
    return hash(of[(left_out + 1) % 3]) * 31 + hash(of[(left_out + 2) % 3]) + left_out;
}

similar_tracks::similar_tracks(std::span<const track_name> tracks) {
    tracks_.reserve(tracks.size());
    for (const auto& each : tracks) {
        const auto& added = tracks_.emplace_back(parts_of(each));
        for (std::size_t left_out = 0; left_out < added.size(); ++left_out)
            by_two_parts_[hash_without(added, left_out)].push_back(static_cast<std::uint32_t>(tracks_.size() - 1));
    }
}

std::vector<similar_tracks::match> similar_tracks::find(const track_name& wanted, std::size_t at_most) const {
    // An album has many titles, and only a similar one is the same track. Albums and artists may be called otherwise.
    constexpr std::array<double, 3> most_different{0.5, 1.0, 0.34};
    const auto name = parts_of(wanted);
    if (name[title_part].empty()) return {};
    std::vector<std::pair<double, std::size_t>> found;
    for (std::size_t left_out = 0; left_out < name.size(); ++left_out) {
        const auto& same = name[(left_out + 1) % 3];
        const auto& same_too = name[(left_out + 2) % 3];
        if (same.empty() || same_too.empty()) continue;
        const auto group = by_two_parts_.find(hash_without(name, left_out));
        if (group == by_two_parts_.end()) continue;
        for (const auto place : std::span(group->second).first(std::min(group->second.size(), most_compared))) {
            const auto& other = tracks_[place];
            if (other[(left_out + 1) % 3] != same || other[(left_out + 2) % 3] != same_too) continue;
            const auto away = difference(name[left_out], other[left_out]);
            if (away <= most_different[left_out]) found.emplace_back(away, place);
        }
    }
    std::ranges::sort(found);
    std::vector<match> best;
    for (const auto& [away, place] : found)
        if (best.size() < at_most && std::ranges::find(best, place, &match::place) == best.end())
            best.push_back({place, away == 0});
    return best;
}

}  // namespace ostrevan::history
