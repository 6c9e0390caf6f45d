#include "player/mpris/desktop_control.h"

namespace ostrevan::mpris {

void desktop_control::on_progress(const app::now_playing& now, const playback::play_status& status) {
    // Around a change of tracks, the two may be of different ones.
    if (status.order.current_entry() != now.entry) return;
    auto state = state_of(now, status, player_.fields);
    if (side_) return side_->show(std::move(state));
    side_ = std::make_unique<bus_side>(std::move(state), [&player = player_](const playback::request& wanted) {
        player.loop.post([&player, wanted] { player.playing.perform(wanted); });
    });
}

void desktop_control::on_ended(bool is_replaced) {
    if (!is_replaced) side_.reset();
}

}  // namespace ostrevan::mpris
