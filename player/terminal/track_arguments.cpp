#include "player/terminal/track_arguments.h"

#include <stdexcept>

#include "player/app/track_selection.h"
#include "player/system/user_error.h"

namespace ostrevan::terminal {
namespace {

std::string in_lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

}  // namespace

void track_arguments::declare(declared_command& command) {
    command.add_option("TRACK", &paths, "A path, path|subsong, or a folder");
    command.add_option("--where", &where, "Every track of the library that matches this query")
        .called("QUERY")
        .excludes("TRACK");
}

metadb_handle_list tracks_of(run_context& context, const track_arguments& arguments, on_missing missing) {
    if (arguments.where) {
        auto found = app::find_tracks(context.player, *arguments.where);
        if (found.empty()) context.screen.note("No track of the library matches " + *arguments.where);
        return found;
    }
    if (arguments.paths.empty()) throw system::user_error("Name at least one track: a path, a folder, or --where QUERY.");
    auto chosen = app::tracks_at(context.player, arguments.paths);
    if (!chosen.problems.empty() && missing == on_missing::stop) throw std::runtime_error(in_lines(chosen.problems));
    for (const auto& path : chosen.no_audio) context.screen.note(path + " is no audio file and was left out.");
    for (const auto& problem : chosen.problems) context.screen.error(problem);
    if (chosen.tracks.empty() && chosen.problems.empty()) throw std::runtime_error("None of these is an audio file.");
    return std::move(chosen.tracks);
}

}  // namespace ostrevan::terminal
