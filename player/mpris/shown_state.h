#pragma once

#include <chrono>
#include <string>

#include "player/app/playing.h"
#include "player/bus/value.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::mpris {

/// What the desktop sees of a playback, in the words and units of MPRIS.
struct shown_state {
    using clock = std::chrono::steady_clock;

    /// By the names of the properties; all but the position.
    bus::dictionary properties{};
    std::string track_id{};  ///< of the turn in the queue, so that a repeated track is another one
    double position = 0;     ///< seconds
    double length = 0;       ///< seconds; 0 when unknown
    bool is_playing = false;
    clock::time_point time{};  ///< of the position

    [[nodiscard]] double position_at(clock::time_point now) const {
        return position + (is_playing ? std::chrono::duration<double>(now - time).count() : 0);
    }
};

shown_state state_of(const app::now_playing& now, const playback::play_status& status,
                     const titleformat::component_fields& fields);

}  // namespace ostrevan::mpris
