#include <iostream>

#include "player/system/interrupt.h"
#include "player/terminal/commands.h"
#include "player/terminal/table.h"

namespace ostrevan::terminal {
namespace {

library::scan_options options_for(run_context& context) {
    library::scan_options options;
    options.stop = &system::interrupted();
    options.on_progress = [&screen = context.screen](const library::scan_progress& progress) {
        screen.show_progress("files  " + progress.folder, progress.files_done, progress.files_known);
    };
    return options;
}

std::string counted(std::size_t number, const char* one, const char* many) {
    return std::to_string(number) + ' ' + (number == 1 ? one : many);
}

void refuse(terminal& screen, const std::vector<library::file_problem>& refused) {
    for (const auto& [path, reason] : refused) screen.error((path.empty() ? "An empty name" : path) + ' ' + reason);
}

void report(run_context& context, const library::scan_summary& done) {
    auto& screen = context.screen;
    screen.end_progress();
    for (const auto& place : done.absent) screen.error(library::describe(place));
    for (const auto& [path, reason] : done.problems) screen.error(path + ": " + reason);
    if (!done.problems.empty()) screen.note("To pass over a file that cannot be mended: 'ostrevan library ignore FILE'.");
    screen.note(std::to_string(done.tracks_added) + " tracks added, " + std::to_string(done.tracks_updated) + " updated, " +
                std::to_string(done.tracks_removed) + " removed, " + std::to_string(done.tracks_unchanged) + " unchanged.");
    if (done.tracks_moved != 0)
        screen.note(counted(done.tracks_moved, "of the removed tracks is", "of the removed tracks are") +
                    " among the added ones under another name; the statistics follow.");
    for (const auto& move : done.unclear) screen.note(library::describe(move));
    if (done.is_stopped)
        screen.error("The scan was interrupted. What it had read is kept; 'ostrevan library rescan' goes on.");
}

void finish_scan(run_context& context, const library::scan_summary& done) {
    report(context, done);
    context.player.run_until_idle();
    if (!done.is_stopped) context.player.mark_library_seen();
}

}  // namespace

void run(run_context& context, const library_add& arguments) {
    const auto done = context.player.library.add_folders(arguments.folders, options_for(context));
    refuse(context.screen, done.refused);
    if (done.refused.size() < arguments.folders.size()) finish_scan(context, done);
}

void run(run_context& context, const library_rescan& arguments) {
    auto& library = context.player.library;
    if (!library.is_enabled())
        context.screen.note("The library has no folder yet: add one with 'ostrevan library add FOLDER'.");
    const auto& folders = arguments.folders;
    const auto done = folders.empty() ? library.rescan(options_for(context)) : library.rescan(folders, options_for(context));
    refuse(context.screen, done.refused);
    if (folders.empty() || done.refused.size() < folders.size()) finish_scan(context, done);
}

void run(run_context& context, const library_ignore& arguments) {
    auto& library = context.player.library;
    if (arguments.paths.empty())
        for (const auto& path : library.ignored()) std::cout << path << '\n';
    else if (arguments.undo) {
        const auto done = library.stop_ignoring(arguments.paths);
        refuse(context.screen, done.refused);
        if (done.refused.size() < arguments.paths.size())
            context.screen.note("No longer left out; 'ostrevan library rescan' reads it.");
    } else {
        const auto done = library.ignore(arguments.paths);
        refuse(context.screen, done.refused);
        if (done.refused.size() < arguments.paths.size())
            context.screen.note(counted(done.tracks_removed, "track", "tracks") +
                                " left the library. Files and statistics stay.");
    }
}

void run(run_context& context, const library_remove& arguments) {
    const auto done = context.player.library.remove_folders(arguments.folders);
    refuse(context.screen, done.refused);
    if (done.refused.size() < arguments.folders.size())
        context.screen.note(counted(done.tracks_removed, "track", "tracks") +
                            " left the library. Files and statistics stay.");
}

void run(run_context& context, const library_folders& /*arguments*/) {
    for (const auto& folder : context.player.library.folders()) std::cout << folder.path << '\n';
}

}  // namespace ostrevan::terminal
