#include "player/terminal/playing_now.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include "player/system/user_error.h"

namespace ostrevan::terminal {

std::optional<playing_now> find_playing(const run_context& context) {
    return context.on_main([&]() -> std::optional<playing_now> {
        const auto& playing = context.player.playing;
        if (!playing.now() || !playing.status()) return std::nullopt;
        return playing_now{*playing.now(), *playing.status()};
    });
}

playing_now require_playing(const run_context& context) {
    auto found = find_playing(context);
    if (!found) throw std::runtime_error("Nothing is playing.");
    return std::move(*found);
}

step_or_value parse_amount(const std::string& text) {
    std::string_view left = text;
    const bool is_step = left.starts_with('+') || left.starts_with('-');
    const double sign = left.starts_with('-') ? -1 : 1;
    if (is_step) left.remove_prefix(1);
    double amount = 0;
    for (int parts = 0; parts < 3; ++parts) {
        double part = 0;
        const auto [end, error] = std::from_chars(left.data(), left.data() + left.size(), part, std::chars_format::fixed);
        if (error != std::errc{} || !std::isfinite(part) || part < 0) break;
        constexpr double sixty = 60;
        amount = amount * sixty + part;
        left.remove_prefix(static_cast<std::size_t>(end - left.data()));
        if (left.empty()) return {is_step, sign * amount};
        if (!left.starts_with(':')) break;
        left.remove_prefix(1);
    }
    throw system::user_error("\"" + text + "\" is no number or time, such as 90, 1:30, +10 or -10.");
}

}  // namespace ostrevan::terminal
