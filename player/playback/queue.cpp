#include "player/playback/queue.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace ostrevan::playback {
namespace {

std::vector<std::uint32_t> in_order(std::size_t count) {
    std::vector<std::uint32_t> places(count);
    std::iota(places.begin(), places.end(), 0U);
    return places;
}

/// The places of each album in the order of the list.
std::vector<std::vector<std::uint32_t>> by_album(const std::vector<std::string>& albums) {
    std::vector<std::vector<std::uint32_t>> groups;
    std::map<std::string_view, std::size_t> known;
    for (const auto place : in_order(albums.size())) {
        const auto [found, is_new] = known.try_emplace(albums[place], groups.size());
        if (is_new || albums[place].empty()) groups.push_back({place});
        else groups[found->second].push_back(place);
    }
    return groups;
}

bool is_order(std::vector<std::uint32_t> round, std::size_t count) {
    std::ranges::sort(round);
    return round == in_order(count);
}

}  // namespace

queue::queue(std::vector<std::string> albums, play_modes modes, std::uint64_t seed, std::vector<double> weights)
    : albums_(std::make_shared<const std::vector<std::string>>(std::move(albums))),
      weights_(std::make_shared<const std::vector<double>>(std::move(weights))),
      modes_(modes),
      random_(seed) {
    order_ = std::make_shared<const places>(modes_.shuffle == shuffle_mode::off ? in_order(size()) : shuffled());
}

bool queue::resume(std::vector<std::uint32_t> round, std::size_t place) {
    if (place >= size() || !is_order(round, size())) return false;
    start(std::move(round), place);
    return true;
}

void queue::start(places round, std::size_t place) {
    current_ = static_cast<turn>(std::ranges::find(round, place) - round.begin());
    first_ = 0;
    order_ = std::make_shared<const places>(std::move(round));
}

std::vector<std::uint32_t> queue::round() const {
    const auto begin = (current_ - first_) / size() * size();
    const auto from = order_->begin() + static_cast<std::ptrdiff_t>(begin);
    return {from, from + static_cast<std::ptrdiff_t>(size())};
}

/// Each group waits for a random time, exponentially distributed with its weight as the rate: the next one is always drawn
/// by the weights of those left.
std::vector<std::uint32_t> queue::shuffled(bool by_weights) {
    std::vector<places> groups;
    if (modes_.shuffle == shuffle_mode::albums) groups = by_album(*albums_);
    else
        for (const auto place : in_order(size())) groups.push_back({place});

    std::exponential_distribution<double> wait;
    std::vector<std::pair<double, const places*>> due;
    for (const auto& group : groups) {
        double sum = 0;
        for (const auto place : group) sum += by_weights ? weight(place) : 1;
        due.emplace_back(wait(random_) * static_cast<double>(group.size()) / sum, &group);
    }
    std::ranges::sort(due);
    places result;
    for (const auto& [time, group] : due) result.insert(result.end(), group->begin(), group->end());
    return result;
}

void queue::add_round() {
    const auto count = static_cast<std::ptrdiff_t>(size());
    const places last(order_->end() - count, order_->end());
    auto next = modes_.shuffle == shuffle_mode::off ? last : shuffled();
    // A list of one album has one order, and of two tracks one round begins with the last of the other.
    constexpr int attempts = 20;
    const auto is_stale = [&] { return next == last || (size() > 2 && next.front() == last.back()); };
    for (int i = 0; modes_.shuffle != shuffle_mode::off && is_stale() && i < attempts; ++i)
        next = shuffled(i < attempts / 2);  // a short list may have one likely order

    const auto rounds_before = (current_ - first_) / size();
    const auto dropped = rounds_before > 1 ? (rounds_before - 1) * size() : 0;
    places kept(order_->begin() + static_cast<std::ptrdiff_t>(dropped), order_->end());
    kept.insert(kept.end(), next.begin(), next.end());
    order_ = std::make_shared<const places>(std::move(kept));
    first_ += dropped;
}

std::optional<queue::turn> queue::following() {
    if (modes_.stop_after) return std::nullopt;
    return modes_.repeat == repeat_mode::track ? current_ : after(current_);
}

std::optional<queue::turn> queue::after(turn at) {
    if (at + 1 - first_ == order_->size()) {
        if (modes_.repeat != repeat_mode::list) return std::nullopt;
        add_round();
    }
    return at + 1;
}

std::optional<queue::turn> queue::before(turn at) {
    if (at > first_) return at - 1;
    if (modes_.repeat != repeat_mode::list) return std::nullopt;
    return at + size() - 1;
}

void queue::go_to(turn at) { current_ = at; }

void queue::begin_again() {
    add_round();
    current_ = first_ + order_->size() - size();
}

void queue::set_shuffle(shuffle_mode mode) {
    if (mode == modes_.shuffle) return;
    modes_.shuffle = mode;
    const auto now = static_cast<std::uint32_t>(place(current_));
    auto next = mode == shuffle_mode::off ? in_order(size()) : shuffled();
    // The current track, or its album, comes first, so that nothing else lies in the past unheard.
    const auto is_first = [&](std::uint32_t each) {
        return each == now ||
               (mode == shuffle_mode::albums && !(*albums_)[now].empty() && (*albums_)[each] == (*albums_)[now]);
    };
    if (mode != shuffle_mode::off) std::ranges::stable_partition(next, is_first);
    start(std::move(next), now);
}

}  // namespace ostrevan::playback
