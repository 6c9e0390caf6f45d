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

void kept_queue::save_state(double seconds) {
    const auto& order = status_->order;
    saved_ = std::chrono::steady_clock::now();
    store_.save({.place = order.place(order.current()),
                 .seconds = seconds,
                 .repeat = static_cast<int>(order.modes().repeat),
                 .shuffle = static_cast<int>(order.modes().shuffle),
                 .volume = status_->volume});
}

/// The next track may be the current one before it sounds.
double kept_queue::seconds_of_current() const {
    return status_->order.place(status_->order.current()) == place_ ? seconds_ : 0;
}

void kept_queue::update() {
    save([&] {
        if (auto round = status_->order.round(); round != round_) store_.save(round_ = std::move(round));
        if (std::chrono::steady_clock::now() - saved_ >= std::chrono::seconds(1)) save_state(seconds_of_current());
    });
}

void kept_queue::begin(const metadb_handle_list& tracks, const playback::play_status& status, double seconds) {
    status_ = status;
    place_ = status.order.place(status.order.current());
    seconds_ = seconds;
    std::vector<playable_location> entries;
    for (const auto& track : tracks) entries.push_back(track->location());
    save([&] { store_.save(entries); });
    update();
}

void kept_queue::on_status(const playback::play_status& status) {
    status_ = status;
    update();
}

void kept_queue::on_progress(std::size_t place, double seconds) {
    place_ = place;
    seconds_ = seconds;
    update();
}

void kept_queue::end(bool is_over) {
    update();
    save([&] { save_state(is_over ? 0 : seconds_); });
}

}  // namespace ostrevan::app
