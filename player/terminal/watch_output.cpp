#include "player/terminal/watch_output.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "player/library/locations.h"
#include "player/system/user_error.h"
#include "player/terminal/track_json.h"
#include "player/titleformat/script.h"

namespace ostrevan::terminal {
namespace {

using app::watch_report;
using json = nlohmann::ordered_json;

/// What a line says of a track: as the library has it, else as the player tells it.
std::string text_of(const run_context& context, const watch_report& report) {
    static const auto script = titleformat::compile("[%artist% - ]%title%");
    if (report.track) return script.run(titleformat::track_fields(context.player.fields, *report.track)).text;
    const auto& told = report.told;
    if (told.title.empty()) return told.location;
    return (told.artist.empty() ? "" : told.artist + " - ") + told.title;
}

/// In one line, whatever the player sends.
std::string title_of(const run_context& context, const watch_report& report) {
    auto title = text_of(context, report);
    std::ranges::replace_if(
        title, [](unsigned char each) { return each < ' '; }, ' ');
    return title;
}

}  // namespace

void declare_watch_options(declared_command& command, app::watch_options& options, const char* needed) {
    const auto add = [&](const char* name, declared_command::value into, const char* what) {
        auto option = command.add_option(name, into, what);
        if (needed != nullptr) option.needs(needed);
        return option;
    };
    add("--only", &options.players.only, "A player to hear, and no other; may be repeated").called("NAME").one_value_each();
    add("--except", &options.players.except, "A player to leave out; may be repeated").called("NAME").one_value_each();
    add("--music-dir", &options.music_folder, "The folder of music of an MPD on another machine").called("DIR");
}

app::watch_options with_whole_paths(app::watch_options options) {
    if (options.music_folder.empty()) return options;
    options.music_folder = library::normal_path(options.music_folder);
    std::error_code error;
    if (!std::filesystem::is_directory(options.music_folder, error))
        throw system::user_error(options.music_folder + " is no folder; --music-dir names the one with MPD's music.");
    return options;
}

void print_report(run_context& context, const watch_report& report) {
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
            return context.screen.error(title + " (" + report.player + "): " + report.reason);
    }
}

void print_report_as_json(std::ostream& out, const watch_report& report) {
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

}  // namespace ostrevan::terminal
