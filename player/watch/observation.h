#pragma once

#include <optional>
#include <string>
#include <variant>

namespace ostrevan::watch {

/// What a player says about the track it plays. Anything may be missing.
struct told_track {
    std::string id{};        ///< of the entry in the player's list
    std::string location{};  ///< an absolute path, or an address with its protocol
    std::string title{};
    std::string artist{};  ///< several are joined by ", "
    std::string album{};
    double length = 0;  ///< seconds; 0 when unknown

    bool operator==(const told_track&) const = default;
};

enum class play_state { stopped, paused, playing };

// What is heard of a player. Times are in seconds.

struct has_track {
    told_track track;
};
struct has_state {
    play_state state;
};
struct has_rate {
    double rate;  ///< seconds of sound in a second
};
struct is_at {
    /// Nothing when the player does not tell.
    std::optional<double> position;
};
struct has_jumped {
    double position;
};
/// The connection to it is lost; it may play on.
struct is_out_of_reach {};
struct has_gone {};
/// Of a source, not of a player: why no player can be heard there, or empty when they can.
struct has_trouble {
    std::string text;
};

using news = std::variant<has_track, has_state, has_rate, is_at, has_jumped, is_out_of_reach, has_gone, has_trouble>;

struct observation {
    std::string player;  ///< such as "vlc"
    double time;         ///< of a clock that rests while the machine sleeps
    news what;
};

}  // namespace ostrevan::watch
