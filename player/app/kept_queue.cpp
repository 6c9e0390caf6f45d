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

void kept_queue::save_state(const playback::play_status& status, double seconds) {
    const auto& order = status.order;
    saved_ = std::chrono::steady_clock::now();
    store_.save({.place = order.place(order.current()),
                 .seconds = seconds,
                 .repeat = static_cast<int>(order.modes().repeat),
                 .shuffle = static_cast<int>(order.modes().shuffle),
                 .volume = status.volume});
}

void kept_queue::begin(const play_start& start) {
    std::vector<playable_location> entries;
    for (const auto& track : start.tracks) entries.push_back(track->location());
    save([&] { store_.save(entries); });
    update({start.order, start.volume}, start.seconds);
}

void kept_queue::update(const playback::play_status& status, double seconds) {
    save([&] {
        if (auto round = status.order.round(); round != round_) store_.save(round_ = std::move(round));
        if (std::chrono::steady_clock::now() - saved_ >= std::chrono::seconds(1)) save_state(status, seconds);
    });
}

void kept_queue::end(const playback::play_status& status, double seconds) {
    update(status, seconds);
    save([&] { save_state(status, seconds); });
}

}  // namespace ostrevan::app
