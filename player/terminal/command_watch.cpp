#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "player/app/watching.h"
#include "player/terminal/command.h"
#include "player/titleformat/script.h"

namespace ostrevan::terminal {
namespace {

using app::watch_report;
using json = nlohmann::ordered_json;

struct watch_words {
    app::watch_options options{};
    bool json = false;
};

constexpr const char* watch_examples =
    "Examples:\n"
    "  ostrevan watch\n"
    "  ostrevan watch --only vlc --only mpd\n"
    "  ostrevan watch --except firefox --json\n"
    "Hears the players of the desktop (MPRIS) and MPD, found by MPD_HOST and MPD_PORT like any of its clients.\n"
    "Ctrl-C ends it.";

/// What a line says of a track: as the library has it, else as the player tells it.
std::string title_of(const run_context& context, const watch_report& report) {
    static const auto script = titleformat::compile("[%artist% - ]%title%");
    if (report.track) return script.run(titleformat::track_fields(context.player.fields, *report.track)).text;
    const auto& told = report.told;
    if (told.title.empty()) return told.location;
    return (told.artist.empty() ? "" : told.artist + " - ") + told.title;
}

void print_text(run_context& context, const watch_report& report) {
    const auto title = title_of(context, report);
    switch (report.what) {
        case watch_report::kind::playing:
            return context.screen.note(report.player + " plays: " + title);
        case watch_report::kind::counted:
            context.out << "Counted: " << title << " (" << report.player << ")" << std::endl;
            return;
        case watch_report::kind::not_counted:
            context.out << "Played, not counted: " << title << " (" << report.player << "): " << report.reason << std::endl;
            return;
        case watch_report::kind::source:
            return context.screen.note(report.reason);
        case watch_report::kind::failure:
            return context.screen.error(title + ": the play could not be counted: " + report.reason);
    }
}

json text_or_null(const std::string& text) { return text.empty() ? json() : json(text); }

/// One object a line.
void print_json(std::ostream& out, const watch_report& report) {
    constexpr std::array events{"playing", "counted", "not counted", "failure", "source"};
    json object{{"event", events[static_cast<std::size_t>(report.what)]}, {"player", report.player}};
    object["path"] = report.track ? json(report.track->location().path) : json();
    object["subsong"] = report.track ? json(report.track->location().subsong) : json();
    object["location"] = text_or_null(report.told.location);
    object["title"] = text_or_null(report.told.title);
    object["artist"] = text_or_null(report.told.artist);
    object["album"] = text_or_null(report.told.album);
    object["reason"] = text_or_null(report.reason);
    out << object.dump(-1, ' ', false, json::error_handler_t::replace) << std::endl;
}

void watch(run_context& context, const watch_words& words) {
    app::watching watching(context.player, words.options, [&](const watch_report& report) {
        if (words.json) print_json(context.out, report);
        else print_text(context, report);
    });
    watching.run(context.job.stop());
}

const command_file watch_command(35, [](declared_command& program) {
    const auto words = std::make_shared<watch_words>();
    auto app = program.add("watch", "Count what other players play", watch_examples);
    auto& options = words->options;
    app.add_option("--only", &options.players.only, "A player to hear, and no other; may be repeated")
        .called("NAME")
        .one_value_each();
    app.add_option("--except", &options.players.except, "A player to leave out; may be repeated")
        .called("NAME")
        .one_value_each();
    app.add_option("--music-dir", &options.music_folder, "The folder of music of an MPD on another machine").called("DIR");
    app.add_flag("--json", words->json, "An object a line");
    app.choose([words] {
        return chosen_command{.run = [words](run_context& context) { watch(context, *words); }, .is_lasting = true};
    });
});

}  // namespace
}  // namespace ostrevan::terminal
