#include <filesystem>
#include <optional>

#include "player/app/track_selection.h"
#include "player/system/counted.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/menu_output.h"
#include "player/terminal/track_arguments.h"
#include "player/view/context_menu.h"

namespace ostrevan::terminal {
namespace {

struct context_words {
    std::vector<std::string> words{};
    std::optional<std::string> command{};
    track_arguments tracks{};

    /// The first word is a track if such a file exists, else a command.
    void split();
};

constexpr const char* context_examples =
    "Examples:\n"
    "  ostrevan context song.flac\n"
    "  ostrevan context 'Playback Statistics/Rating/4' song.flac\n"
    "  ostrevan context rating/4 song.flac\n"
    "  ostrevan --yes context 'Playback Statistics/Write statistics to file tags' --where ALL\n"
    "  ostrevan --yes --file blue.xml context 'Playback Statistics/Export statistics to XML...' --where '%album% IS Blue'\n"
    "Without a path, prints the menu with marks and greyed entries. If the first word is an existing file, it is a track.";

constexpr const char* rate_examples =
    "Examples:\n"
    "  ostrevan rate 4 ~/Music/song.flac\n"
    "  ostrevan rate + --where '%play_count% GREATER 20'\n"
    "  ostrevan rate none ~/Music/album";

void context_words::split() {
    if (!words.empty()) {
        std::error_code error;
        const auto path = words.front().substr(0, words.front().rfind('|'));
        if (!std::filesystem::exists(words.front(), error) && !std::filesystem::exists(path, error)) {
            command = words.front();
            words.erase(words.begin());
        }
    }
    tracks.paths = words;
}

std::string tracks_text(std::size_t count) { return "for " + system::counted(count, "track"); }

void run_context_menu(run_context& context, const context_words& words) {
    const auto tracks = tracks_of(context, words.tracks);
    const auto& services = context.player.services;
    const auto what_for = tracks_text(tracks.get_count());
    if (words.command) app::note_chosen(context.player, tracks);
    if (const auto id = nuv::parse_guid(words.command.value_or(""))) {
        if (!context.on_main([&] { return view::run_context_command(services, *id, tracks); }))
            throw system::user_error("No component has a command " + *words.command + ".");
        context.job.wait_until_idle();
        return context.screen.note_done("The command is done " + what_for);
    }
    if (tracks.empty() && words.command) return;
    const auto menu = context.on_main([&] { return view::context_menu_for(services, tracks); });
    if (!words.command) return print_menu(context.out, menu);
    const auto& entry = view::find_command(menu, *words.command);
    run_entry(context, entry, "for these tracks");
    context.screen.note_done(path_of(menu, entry) + " is done " + what_for);
}

void rate(run_context& context, const std::string& stars, const track_arguments& tracks) {
    run_context_menu(context, {{}, view::rating_path(stars), tracks});
}

const command_file context_command(80, [](declared_command& program) {
    const auto words = std::make_shared<context_words>();
    auto app = program.add("context", "List the context menu of a selection, or run one command", context_examples);
    app.add_option("COMMAND", &words->words, "A menu path or {GUID}, then the tracks");
    app.add_option("--where", &words->tracks.where, "Every track of the library that matches this query").called("QUERY");
    app.choose([words] {
        words->split();
        return chosen_command{[words](run_context& context) { run_context_menu(context, *words); },
                              words->command.has_value()};
    });
});

/// A short name for the ratings of the context menu.
const command_file rate_command(90, [](declared_command& program) {
    const auto stars = std::make_shared<std::string>();
    const auto tracks = std::make_shared<track_arguments>();
    auto app = program.add("rate", "Rate tracks", rate_examples);
    app.add_option("STARS", stars.get(), "An entry of the Rating menu: 1 to 5, - or + for a step, none").required();
    tracks->declare(app);
    app.run([stars, tracks](run_context& context) { rate(context, *stars, *tracks); });
});

}  // namespace
}  // namespace ostrevan::terminal
