#include "player/playback/queue.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

namespace ostrevan::playback {
namespace {

queue::entries numbered(std::size_t first, std::size_t count) {
    queue::entries result(count);
    std::iota(result.begin(), result.end(), static_cast<queue::entry>(first));
    return result;
}

bool is_order(queue::entries round, queue::entries list) {
    std::ranges::sort(round);
    std::ranges::sort(list);
    return round == list;
}

queue::entries::iterator after(queue::entries& all, queue::entry which) { return std::next(std::ranges::find(all, which)); }

}  // namespace

queue::queue(std::vector<shuffle_traits> tracks, play_modes modes, std::uint64_t seed)
    : traits_(std::make_shared<const std::vector<shuffle_traits>>(std::move(tracks))),
      list_(std::make_shared<const entries>(numbered(0, traits_->size()))),
      modes_(modes),
      random_(seed) {
    order_ = modes_.shuffle == shuffle_mode::off ? list_ : std::make_shared<const entries>(shuffle(*list_));
}

bool queue::resume(entries round, std::size_t current) {
    if (current >= size() || !is_order(round, *list_)) return false;
    start(std::move(round), static_cast<entry>(current));
    return true;
}

/// Makes the round the only one, and leaves the number of the current turn.
void queue::start(entries round, entry current) {
    first_ = current_ - static_cast<turn>(std::ranges::find(round, current) - round.begin());
    order_ = std::make_shared<const entries>(std::move(round));
}

std::optional<std::size_t> queue::place_of(entry which) const {
    const auto found = std::ranges::find(*list_, which);
    if (found == list_->end()) return std::nullopt;
    return static_cast<std::size_t>(found - list_->begin());
}

queue::entries queue::round() const {
    if (size() == 0) return {};
    const auto begin = (current_ - first_) / size() * size();
    const auto from = order_->begin() + static_cast<std::ptrdiff_t>(begin);
    return {from, from + static_cast<std::ptrdiff_t>(size())};
}

queue::entries queue::shuffle(std::span<const entry> which, bool by_weights) {
    return shuffled(which, *traits_, modes_.shuffle, random_, by_weights);
}

void queue::add_round() {
    const auto count = static_cast<std::ptrdiff_t>(size());
    const entries last(order_->end() - count, order_->end());
    auto next = modes_.shuffle == shuffle_mode::off ? last : shuffle(*list_);
    // A list of one album has one order, and of two tracks one round begins with the last of the other.
    constexpr int attempts = 20;
    const auto is_stale = [&] { return next == last || (size() > 2 && next.front() == last.back()); };
    for (int i = 0; modes_.shuffle != shuffle_mode::off && is_stale() && i < attempts; ++i)
        next = shuffle(*list_, i < attempts / 2);  // a short list may have one likely order

    const auto rounds_before = (current_ - first_) / size();
    const auto dropped = rounds_before > 1 ? (rounds_before - 1) * size() : 0;
    entries kept(order_->begin() + static_cast<std::ptrdiff_t>(dropped), order_->end());
    kept.insert(kept.end(), next.begin(), next.end());
    order_ = std::make_shared<const entries>(std::move(kept));
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
    const auto now = current_entry();
    auto next = mode == shuffle_mode::off ? *list_ : shuffle(*list_);
    // The current track, or its album, comes first, so that nothing else lies in the past unheard.
    const auto& traits = *traits_;
    const auto is_first = [&](entry each) {
        return each == now ||
               (mode == shuffle_mode::albums && !traits[now].album.empty() && traits[each].album == traits[now].album);
    };
    if (mode != shuffle_mode::off) std::ranges::stable_partition(next, is_first);
    start(std::move(next), now);
}

void queue::add(std::span<const shuffle_traits> tracks, bool is_next) {
    const auto now = current_entry();
    const auto added = numbered(traits_->size(), tracks.size());
    auto traits = *traits_;
    traits.insert(traits.end(), tracks.begin(), tracks.end());
    traits_ = std::make_shared<const std::vector<shuffle_traits>>(std::move(traits));

    const auto with = [&](entries all, const entries& more) {
        all.insert(is_next ? playback::after(all, now) : all.end(), more.begin(), more.end());
        return all;
    };
    auto next = with(round(), is_next || modes_.shuffle == shuffle_mode::off ? added : shuffle(added));
    list_ = std::make_shared<const entries>(with(*list_, added));
    start(std::move(next), now);
}

bool queue::remove(std::span<const entry> which) {
    const std::set<entry> removed(which.begin(), which.end());
    const auto is_removed = [&](entry each) { return removed.contains(each); };
    const auto now = current_entry();
    auto next = round();
    const auto left = std::find_if_not(std::ranges::find(next, now), next.end(), is_removed);
    const auto successor = left == next.end() ? std::nullopt : std::optional(*left);
    auto list = *list_;
    std::erase_if(next, is_removed);
    std::erase_if(list, is_removed);
    list_ = std::make_shared<const entries>(std::move(list));

    if (is_removed(now)) ++current_;  // another track has another turn
    if (successor || next.empty()) {
        start(std::move(next), successor.value_or(now));
        return successor.has_value();
    }
    const auto last = next.back();
    start(std::move(next), last);
    begin_again();
    return modes_.repeat == repeat_mode::list;
}

void queue::move(entry which, std::size_t position) {
    const auto now = current_entry();
    auto next = round();
    std::erase(next, which);
    next.insert(next.begin() + static_cast<std::ptrdiff_t>(std::min(position, next.size())), which);
    if (modes_.shuffle == shuffle_mode::off) list_ = std::make_shared<const entries>(next);
    start(std::move(next), now);
}

}  // namespace ostrevan::playback
