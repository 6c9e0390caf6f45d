#pragma once

#include <optional>
#include <string>

#include "player/app/playing.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// What plays in the owner of the profile, at one moment.
struct playing_now {
    app::now_playing track;
    playback::play_status status;
};

/// Empty when nothing plays.
std::optional<playing_now> find_playing(const run_context& context);
/// Throws when nothing plays.
playing_now require_playing(const run_context& context);

struct step_or_value {
    bool is_step;
    double amount;
};

/// "90", "1:30" or "1:02:30"; with a sign it is a step. Throws `system::user_error`.
step_or_value parse_amount(const std::string& text);

}  // namespace ostrevan::terminal
