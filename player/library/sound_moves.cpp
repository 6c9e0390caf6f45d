#include "player/library/sound_moves.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string_view>

#include "nuv/text.h"
#include "player/library/library_changes.h"

namespace ostrevan::library {
namespace {

using sounds = std::vector<const placed_sound*>;
using condition = bool (*)(const placed_sound& left, const placed_sound& come);

/// Thousands of identical files are not worth comparing pairwise.
constexpr std::size_t most_pairs = 10000;

bool has_info(const placed_sound& sound) {
    return std::ranges::all_of(sound.tracks, [](const track_snapshot& each) { return static_cast<bool>(each.info); });
}

bool is_possible(const placed_sound& left, const placed_sound& come) {
    return come.scan > left.scan && left.path != come.path && has_info(left) && has_info(come) &&
           std::ranges::equal(left.tracks, come.tracks, [](const track_snapshot& a, const track_snapshot& b) {
               return a.subsong == b.subsong && is_same_sound(a.info->info(), b.info->info());
           });
}

bool has_same_tags(const placed_sound& a, const placed_sound& b) {
    return std::ranges::equal(a.tracks, b.tracks, [](const track_snapshot& one, const track_snapshot& other) {
        return one.info->info() == other.info->info();
    });
}

bool has_same_name(const placed_sound& a, const placed_sound& b) {
    return nuv::file_name_of(a.path) == nuv::file_name_of(b.path);
}

constexpr condition conditions[] = {
    [](const placed_sound& a, const placed_sound& b) { return has_same_tags(a, b) && has_same_name(a, b); },
    has_same_tags,
    [](const placed_sound&, const placed_sound&) { return true; },
};

/// Moves unambiguous pairs, each the only match of the other, from the lists to `moves`.
void take_pairs(sounds& left, sounds& come, condition fits, sound_moves& moves) {
    const auto only_one = [](const sounds& among, const std::function<bool(const placed_sound&)>& wanted) {
        const placed_sound* found = nullptr;
        for (const auto* each : among) {
            if (!wanted(*each)) continue;
            if (found != nullptr) return static_cast<const placed_sound*>(nullptr);
            found = each;
        }
        return found;
    };
    const auto pair_fits = [&](const placed_sound& from, const placed_sound& to) {
        return is_possible(from, to) && fits(from, to);
    };
    sound_moves found;
    for (const auto* from : left) {
        const auto* to = only_one(come, [&](const placed_sound& each) { return pair_fits(*from, each); });
        if (to != nullptr && only_one(left, [&](const placed_sound& each) { return pair_fits(each, *to); }) == from)
            found.sure.emplace_back(from, to);
    }
    for (const auto& [from, to] : found.sure) {
        std::erase(left, from);
        std::erase(come, to);
        moves.sure.emplace_back(from, to);
    }
}

/// A track with a title is identified by its tags: if all are equal, any pairing is right.
bool is_all_the_same(const sounds& left, const sounds& come) {
    const auto& first = *left.front();
    const auto is_same = [&](const placed_sound* each) { return has_same_tags(first, *each); };
    const auto has_title = [](const track_snapshot& each) { return each.info->info().meta_exists("title"); };
    return std::ranges::all_of(left, is_same) && std::ranges::all_of(come, is_same) &&
           std::ranges::all_of(first.tracks, has_title);
}

std::vector<std::string> paths_of(const sounds& among) {
    std::vector<std::string> paths;
    for (const auto* each : among) paths.push_back(each->path);
    std::ranges::sort(paths);
    return paths;
}

void match(sounds left, sounds come, sound_moves& moves) {
    if (left.size() * come.size() <= most_pairs)
        for (const auto fits : conditions) take_pairs(left, come, fits, moves);
    std::erase_if(left, [&](const placed_sound* from) {
        return std::ranges::none_of(come, [&](const placed_sound* to) { return is_possible(*from, *to); });
    });
    std::erase_if(come, [&](const placed_sound* to) {
        return std::ranges::none_of(left, [&](const placed_sound* from) { return is_possible(*from, *to); });
    });
    if (!left.empty() && !is_all_the_same(left, come)) moves.unclear.push_back({paths_of(left), paths_of(come)});
}

}  // namespace

sound_moves find_moves(std::span<const placed_sound> left, std::span<const placed_sound> come) {
    std::map<std::uint64_t, std::pair<sounds, sounds>> by_mark;
    for (const auto& each : left) by_mark[each.mark].first.push_back(&each);
    for (const auto& each : come)
        if (const auto found = by_mark.find(each.mark); found != by_mark.end()) found->second.second.push_back(&each);
    sound_moves moves;
    for (auto& [mark, both] : by_mark)
        if (mark != 0 && !both.second.empty()) match(std::move(both.first), std::move(both.second), moves);
    return moves;
}

}  // namespace ostrevan::library
