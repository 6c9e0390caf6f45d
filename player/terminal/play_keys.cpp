#include "player/terminal/play_keys.h"

#include <algorithm>
#include <array>

namespace ostrevan::terminal {
namespace {

using playback::action;

struct binding {
    /// As the terminal sends it; cursor keys are sent in two ways.
    std::array<const char*, 2> keys;
    playback::request wanted;
    /// A line of the help; empty where another line says it.
    const char* help;
};

constexpr binding bindings[] = {
    {{" ", " "}, {action::toggle_pause}, "space   pause, and go on"},
    {{"n", ">"}, {action::next}, "n >     next track"},
    {{"p", "<"}, {action::previous}, "p <     previous track"},
    {{"\x1b[C", "\x1bOC"}, {action::seek_by, 10}, "right   10 seconds on"},
    {{"\x1b[D", "\x1bOD"}, {action::seek_by, -10}, "left    10 seconds back"},
    {{"\x1b[A", "\x1bOA"}, {action::seek_by, 60}, "up      a minute on"},
    {{"\x1b[B", "\x1bOB"}, {action::seek_by, -60}, "down    a minute back"},
    {{"b", "b"}, {action::seek_to, 0}, "b       back to the beginning of the track"},
    {{"+", "="}, {action::change_volume, 5}, "+       louder"},
    {{"-", "-"}, {action::change_volume, -5}, "-       softer"},
    {{"r", "r"}, {action::cycle_repeat}, "r       repeat: off, the track, the list"},
    {{"s", "s"}, {action::cycle_shuffle}, "s       shuffle: off, tracks, albums"},
    {{"e", "e"}, {action::toggle_stop_after}, "e       end after this track, or not"},
    {{"1", "1"}, {action::rate, 1}, "1 to 5  rate the track"},
    {{"2", "2"}, {action::rate, 2}, ""},
    {{"3", "3"}, {action::rate, 3}, ""},
    {{"4", "4"}, {action::rate, 4}, ""},
    {{"5", "5"}, {action::rate, 5}, ""},
    {{"0", "0"}, {action::rate, 0}, "0       remove the rating"},
    {{"q", "Q"}, {action::quit}, "q       quit"},
};

}  // namespace

std::optional<playback::request> request_of(std::string_view key) {
    for (const auto& [keys, wanted, help] : bindings)
        if (keys[0] == key || keys[1] == key) return wanted;
    return std::nullopt;
}

std::string keys_help() {
    std::string text = "Keys:";
    for (const auto& each : bindings)
        if (*each.help != '\0') text += std::string("\n  ") + each.help;
    return text;
}

}  // namespace ostrevan::terminal
