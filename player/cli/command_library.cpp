#include <iostream>

#include "player/cli/commands.h"
#include "player/cli/table.h"
#include "player/front/interrupt.h"

namespace ostrevan::cli {
namespace {

library::scan_options options_for(run_context& context) {
    library::scan_options options;
    options.stop = &front::interrupted();
    options.on_progress = [&screen = context.screen](const library::scan_progress& progress) {
        screen.show_progress("files  " + progress.folder, progress.files_done, progress.files_known);
    };
    return options;
}

void report(run_context& context, const library::scan_summary& done) {
    auto& screen = context.screen;
    screen.end_progress();
    for (const auto& place : done.absent) screen.error(library::describe(place));
    for (const auto& [path, reason] : done.problems) screen.error(path + ": " + reason);
    screen.note(std::to_string(done.tracks_added) + " tracks added, " + std::to_string(done.tracks_updated) + " updated, " +
                std::to_string(done.tracks_removed) + " removed, " + std::to_string(done.tracks_unchanged) + " unchanged.");
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
    finish_scan(context, context.player.library().add_folders(arguments.folders, options_for(context)));
}

void run(run_context& context, const library_rescan& /*arguments*/) {
    if (!context.player.library().is_enabled())
        context.screen.note("The library has no folder yet: add one with 'ostrevan library add FOLDER'.");
    finish_scan(context, context.player.library().rescan(options_for(context)));
}

void run(run_context& context, const library_remove& arguments) {
    const auto removed = context.player.library().remove_folders(arguments.folders);
    context.screen.note(std::to_string(removed) + " tracks left the library. Their files and statistics stay.");
}

void run(run_context& context, const library_folders& /*arguments*/) {
    for (const auto& folder : context.player.library().folders()) std::cout << folder.path << '\n';
}

}  // namespace ostrevan::cli
