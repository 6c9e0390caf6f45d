#include <algorithm>

#include "player/app/play_start.h"
#include "player/terminal/command.h"
#include "player/terminal/play_keys.h"
#include "player/terminal/play_screen.h"
#include "player/terminal/playlist_entries.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

using playback::repeat_mode;
using playback::replay_gain;
using playback::shuffle_mode;

struct play_words {
    track_arguments tracks{};
    std::optional<std::string> playlist{};
    std::string audio = "auto";
    bool fast = false;
    std::optional<std::string> shuffle{};
    std::optional<std::string> repeat{};
    std::optional<std::string> gain{};
    std::optional<double> volume{};
};

constexpr const char* play_examples =
    "Examples:\n"
    "  ostrevan play ~/Music/song.flac 'album.cue|3'\n"
    "  ostrevan play --where '%rating% IS 5' --shuffle --repeat\n"
    "  ostrevan play --shuffle=albums --replay-gain=album ~/Music\n"
    "  ostrevan play --playlist Favourites\n"
    "  ostrevan play --audio null --fast ~/Music/album\n"
    "  ostrevan play\n"
    "Without a track, goes on where the last playback stopped. While tracks play on a terminal, ? shows the keys.";

// The words by mode.
const std::vector<std::string> shuffle_names{"off", "tracks", "albums"};
const std::vector<std::string> repeat_names{"off", "track", "list"};
const std::vector<std::string> gain_names{"off", "track", "album"};

template <class Mode>
std::optional<Mode> mode_of(const std::optional<std::string>& name, const std::vector<std::string>& names) {
    if (!name) return std::nullopt;
    return static_cast<Mode>(std::ranges::find(names, *name) - names.begin());
}

/// The tracks that the arguments name or, without arguments, the last playback. Empty when nothing matches.
std::optional<app::play_start> start_of(run_context& context, const play_words& words) {
    auto& player = context.player;
    const bool is_new = words.playlist || words.tracks.where || !words.tracks.paths.empty();
    const auto shuffle = mode_of<shuffle_mode>(words.shuffle, shuffle_names);
    const auto repeat = mode_of<repeat_mode>(words.repeat, repeat_names);
    if (auto again = is_new ? std::nullopt : app::start_again(player)) {
        if (shuffle) again->order.set_shuffle(*shuffle);
        if (repeat) again->order.set_repeat(*repeat);
        return again;
    }
    auto tracks = words.playlist ? app::tracks_of_entries(player, entries_of(context, *words.playlist))
                                 : tracks_of(context, words.tracks, on_missing::go_on);
    if (tracks.empty()) return std::nullopt;
    return app::start_with(player, std::move(tracks),
                           {.repeat = repeat.value_or(repeat_mode::off), .shuffle = shuffle.value_or(shuffle_mode::off)});
}

void press(run_context& context, const std::string& key) {
    const core::job::scope scope(context.job.shared_from_this());
    context.player.loop.post([&context, key] {
        if (key == "?") return context.job.run_on_own_thread([&context] { context.screen.print_line(keys_help()); });
        if (const auto wanted = request_of(key)) context.player.playing.perform(*wanted);
    });
}

void play(run_context& context, const play_words& words) {
    auto turn = context.player.queue_turn.take([] {});
    auto start = turn ? start_of(context, words) : std::nullopt;
    if (!start) return;
    if (words.volume) start->volume = *words.volume;
    play_screen shown(context);
    auto& playing = context.player.playing;
    // A full-speed run is over before a key could be meant for it.
    if (!words.fast) context.screen.read_keys([&context](const std::string& key) { press(context, key); });
    const auto audio = words.audio == "null" ? playback::audio_output::null : playback::audio_output::automatic;
    const auto gain = mode_of<replay_gain>(words.gain, gain_names).value_or(replay_gain::off);
    context.on_main([&] { playing.start(std::move(*start), {.audio = audio, .fast = words.fast, .gain = gain}, shown); });
    turn.reset();
    context.job.serve_until([&] { return shown.has_ended(); });
    context.screen.stop_keys();
    context.job.wait_until_idle();  // keys that came at the end
    context.screen.end_progress();
    if (context.job.stop())
        context.screen.note("Interrupted: plays counted so far (" + std::to_string(shown.counted()) + ") are kept.");
    else if (shown.is_replaced()) context.screen.note("Something else was asked to play.");
}

const command_file play_command(30, [](declared_command& program) {
    const auto words = std::make_shared<play_words>();
    auto app = program.add("play", "Play tracks", play_examples);
    words->tracks.declare(app);
    app.add_option("--playlist", &words->playlist, "The tracks of a playlist")
        .called("PLAYLIST")
        .excludes("--where")
        .excludes("TRACK");
    app.add_flag("--shuffle{tracks}", words->shuffle, "Another order each time: of tracks, or of albums (--shuffle=albums)")
        .one_of(shuffle_names);
    app.add_flag("--repeat{list}", words->repeat, "Repeat the list, or each track (--repeat=track)").one_of(repeat_names);
    app.add_option("--replay-gain", &words->gain, "Even out the loudness by the tags of the files: off, track or album")
        .one_of(gain_names);
    app.add_option("--volume", &words->volume, "0 to 100").between(0, 100);
    app.add_option("--audio", &words->audio, "auto: the sound device; null: none").one_of({"auto", "null"});
    app.add_flag("--fast", words->fast, "Decode as fast as possible, without sound");
    app.choose([words] {
        return chosen_command{.run = [words](run_context& context) { play(context, *words); }, .is_lasting = true};
    });
});

}  // namespace
}  // namespace ostrevan::terminal
