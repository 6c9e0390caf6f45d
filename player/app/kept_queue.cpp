#include "player/app/kept_queue.h"

#include <exception>
#include <utility>

namespace ostrevan::app {

/// A queue that cannot be kept does not keep anybody from listening.
void kept_queue::save(const std::function<void()>& work) {
    if (has_failed_ || store_.is_read_only()) return;
    try {
        work();
    } catch (const std::exception& error) {
        has_failed_ = true;
        on_failure_("The queue cannot be kept for the next start: " + std::string(error.what()));
    }
}

library::queue_state kept_queue::state_at(double seconds) const {
    const auto& order = status_->order;
    return {.place = order.place_of(order.current_entry()).value_or(0),
            .seconds = seconds,
            .repeat = static_cast<int>(order.modes().repeat),
            .shuffle = static_cast<int>(order.modes().shuffle),
            .volume = status_->volume};
}

void kept_queue::save_list() {
    const auto& order = status_->order;
    list_ = order.list();
    if (list_.empty()) return store_.clear();
    std::vector<std::optional<std::uint32_t>> positions(locations_.size());
    positions_.resize(locations_.size());
    std::vector<library::listed_entry> list;
    for (const auto entry : order.list()) {
        positions[entry] = static_cast<std::uint32_t>(list.size());
        list.push_back({locations_[entry], positions_[entry]});
    }
    positions_ = std::move(positions);
    round_ = order.round();
    saved_ = std::chrono::steady_clock::now();
    store_.save(list, positions_of(round_), state_at(seconds_of_current()));
}

std::vector<std::uint32_t> kept_queue::positions_of(const playback::queue::entries& entries) const {
    std::vector<std::uint32_t> positions;
    for (const auto entry : entries) positions.push_back(positions_[entry].value_or(0));
    return positions;
}

void kept_queue::save_state(double seconds) {
    saved_ = std::chrono::steady_clock::now();
    store_.save(state_at(seconds));
}

/// The next track may be the current one before it sounds.
double kept_queue::seconds_of_current() const { return status_->order.current_entry() == entry_ ? seconds_ : 0; }

void kept_queue::update() {
    save([&] {
        if (status_->order.list() != list_) return save_list();
        if (status_->order.size() == 0) return;
        if (auto round = status_->order.round(); round != round_) store_.save(positions_of(round_ = std::move(round)));
        if (std::chrono::steady_clock::now() - saved_ >= std::chrono::seconds(1)) save_state(seconds_of_current());
    });
}

void kept_queue::begin(const metadb_handle_list& tracks, const playback::play_status& status, double seconds) {
    status_ = status;
    entry_ = status.order.current_entry();
    seconds_ = seconds;
    add(tracks);
    update();
}

void kept_queue::add(const metadb_handle_list& tracks) {
    for (const auto& track : tracks) locations_.push_back(track->location());
}

void kept_queue::on_status(const playback::play_status& status) {
    status_ = status;
    update();
}

void kept_queue::on_progress(std::size_t entry, double seconds) {
    entry_ = entry;
    seconds_ = seconds;
    update();
}

void kept_queue::end(bool is_over) {
    update();
    save([&] {
        if (!list_.empty()) save_state(is_over ? 0 : seconds_of_current());
    });
}

}  // namespace ostrevan::app
