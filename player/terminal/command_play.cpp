#include <algorithm>

#include "player/app/playing.h"
#include "player/system/interrupt.h"
#include "player/terminal/command.h"
#include "player/terminal/play_keys.h"
#include "player/terminal/play_screen.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

using playback::repeat_mode;
using playback::replay_gain;
using playback::shuffle_mode;

struct play_words {
    track_arguments tracks{};
    std::string audio = "auto";
    bool fast = false;
    std::optional<std::string> shuffle{};
    std::optional<std::string> repeat{};
    std::string gain = "off";
    std::optional<double> volume{};
};

constexpr const char* play_examples =
    "Examples:\n"
    "  ostrevan play ~/Music/song.flac 'album.cue|3'\n"
    "  ostrevan play --where '%rating% IS 5' --shuffle --repeat\n"
    "  ostrevan play --shuffle=albums --replay-gain=album ~/Music\n"
    "  ostrevan play --audio null --fast ~/Music/album";

// The words by mode.
const std::vector<std::string> shuffle_names{"off", "tracks", "albums"};
const std::vector<std::string> repeat_names{"off", "track", "list"};
const std::vector<std::string> gain_names{"off", "track", "album"};

template <class Mode>
Mode mode_of(const std::string& name, const std::vector<std::string>& names) {
    return static_cast<Mode>(std::ranges::find(names, name) - names.begin());
}

app::play_plan plan_of(run_context& context, const play_words& words) {
    playback::play_modes modes;
    if (words.shuffle) modes.shuffle = mode_of<shuffle_mode>(*words.shuffle, shuffle_names);
    if (words.repeat) modes.repeat = mode_of<repeat_mode>(*words.repeat, repeat_names);
    auto tracks = tracks_of(context, words.tracks, on_missing::go_on);
    auto order = app::make_queue(context.player, tracks, modes);
    const auto audio = words.audio == "null" ? playback::audio_output::null : playback::audio_output::automatic;
    return {.tracks = std::move(tracks),
            .order = std::move(order),
            .options = {.audio = audio,
                        .fast = words.fast,
                        .gain = mode_of<replay_gain>(words.gain, gain_names),
                        .volume = words.volume.value_or(100)}};
}

void play(run_context& context, const play_words& words) {
    auto plan = plan_of(context, words);
    if (plan.tracks.empty()) return;
    play_screen screen(context, plan.tracks.get_count());
    app::playing playing(context.player, screen);
    // A full-speed run is over before a key could be meant for it.
    if (!words.fast) {
        context.screen.read_keys([&context, &playing](const std::string& key) {
            context.player.loop.post([&context, &playing, key] {
                if (key == "?") return context.screen.print_line(keys_help());
                if (const auto wanted = request_of(key)) playing.perform(*wanted);
            });
        });
    }
    playing.run(std::move(plan));
    context.screen.stop_keys();
    context.player.run_until_idle();  // keys that came at the end
    context.screen.end_progress();
    if (system::interrupted())
        context.screen.note("Interrupted: plays counted so far (" + std::to_string(playing.counted()) + ") are kept.");
}

const command_file play_command(30, [](command_declarations& declare) {
    const auto words = std::make_shared<play_words>();
    auto& app = declare.add("play", "Play tracks", play_examples);
    words->tracks.declare(app);
    app.add_flag("--shuffle{tracks}", words->shuffle, "Another order each time: of tracks, or of albums (--shuffle=albums)")
        ->check(CLI::IsMember(shuffle_names));
    app.add_flag("--repeat{list}", words->repeat, "Repeat the list, or each track (--repeat=track)")
        ->check(CLI::IsMember(repeat_names));
    app.add_option("--replay-gain", words->gain, "Even out the loudness by the tags of the files: off, track or album")
        ->check(CLI::IsMember(gain_names));
    app.add_option("--volume", words->volume, "0 to 100")->check(CLI::Range(0.0, 100.0));
    app.add_option("--audio", words->audio, "auto: the sound device; null: none")->check(CLI::IsMember({"auto", "null"}));
    app.add_flag("--fast", words->fast, "Decode as fast as possible, without sound");
    declare.run(app, [words](run_context& context) { play(context, *words); });
});

}  // namespace
}  // namespace ostrevan::terminal
