
#include "player/app/retag_notes.h"
#include "player/app/scan_report.h"
#include "player/library/locations.h"
#include "player/system/counted.h"
#include "player/terminal/command.h"
#include "player/terminal/table.h"

namespace ostrevan::terminal {
namespace {

using paths = std::vector<std::string>;

constexpr const char* library_examples =
    "Examples:\n"
    "  ostrevan library add ~/Music /mnt/disk/Music\n"
    "  ostrevan library rescan\n"
    "  ostrevan library ignore ~/Music/broken.mp3\n"
    "  ostrevan library ignore --undo ~/Music/broken.mp3\n"
    "A missing folder keeps its tracks and their statistics. Ignored files stay on the disk and keep their statistics.";

/// For scans on this thread.
library::scan_options options_for(run_context& context) {
    library::scan_options options;
    options.stop = &context.job.stop();
    options.on_progress = [&context](const library::scan_progress& progress) {
        context.screen.show_progress("files  " + progress.folder, progress.files_done, progress.files_known);
        context.job.serve();
    };
    options.on_main = context.player.on_main();
    return options;
}

/// Commands that change the library are carried out one after the other.
template <typename Work>
void in_turn(run_context& context, Work work) {
    const auto turn = context.player.library_turn.take(
        [&] { context.screen.note("Another command is changing the library; this one comes after it."); });
    if (turn) work();
}

void refuse(terminal& screen, const std::vector<library::file_problem>& refused) {
    for (const auto& [path, reason] : refused) screen.error((path.empty() ? "An empty name" : path) + ' ' + reason);
}

void report(run_context& context, const library::scan_summary& done) {
    auto& screen = context.screen;
    screen.end_progress();
    for (const auto& line : app::scan_problems(done)) screen.error(line);
    if (!done.problems.empty()) screen.note("To pass over a file that cannot be mended: 'ostrevan library ignore FILE'.");
    for (const auto& line : app::scan_notes(done)) screen.note(line);
    if (done.is_stopped)
        screen.error("The scan was interrupted. What it had read is kept; 'ostrevan library rescan' goes on.");
}

void finish_scan(run_context& context, const library::scan_summary& done) {
    report(context, done);
    context.job.wait_until_idle();
    const auto note = [&](const std::string& line) { context.screen.note(line); };
    if (app::note_retags(context.player, context.player.retags.take(), note) != 0)
        context.screen.note("'ostrevan undo' takes back what the scan did to these statistics.");
    if (!done.is_stopped) context.player.mark_library_seen();
}

void add_folders(run_context& context, const paths& folders) {
    const auto done = context.player.library.add_folders(folders, options_for(context));
    refuse(context.screen, done.refused);
    if (done.refused.size() < folders.size()) finish_scan(context, done);
}

void rescan(run_context& context, const paths& folders) {
    auto& library = context.player.library;
    if (!context.on_main([&] { return library.is_enabled(); }))
        context.screen.note("The library has no folder yet: add one with 'ostrevan library add FOLDER'.");
    const auto done = folders.empty() ? library.rescan(options_for(context)) : library.rescan(folders, options_for(context));
    refuse(context.screen, done.refused);
    if (folders.empty() || done.refused.size() < folders.size()) finish_scan(context, done);
}

/// The current folder of the main thread may be another one.
paths normal(paths places) {
    for (auto& each : places) each = library::normal_path(each);
    return places;
}

void print_ignored(run_context& context) {
    for (const auto& path : context.on_main([&] { return context.player.library.ignored(); })) context.out << path << '\n';
}

void ignore(run_context& context, const paths& places, bool undo) {
    auto& library = context.player.library;
    if (undo) {
        const auto done = library.stop_ignoring(places, context.player.on_main());
        refuse(context.screen, done.refused);
        if (done.refused.size() < places.size())
            context.screen.note("No longer left out; 'ostrevan library rescan' reads it.");
    } else {
        const auto done = library.ignore(places, context.player.on_main());
        refuse(context.screen, done.refused);
        if (done.refused.size() < places.size())
            context.screen.note(system::counted(done.tracks_removed, "track") +
                                " left the library. Files and statistics stay.");
    }
}

void remove_folders(run_context& context, const paths& folders) {
    const auto done = context.player.library.remove_folders(folders, context.player.on_main());
    refuse(context.screen, done.refused);
    if (done.refused.size() < folders.size())
        context.screen.note(system::counted(done.tracks_removed, "track") + " left the library. Files and statistics stay.");
}

void print_folders(run_context& context) {
    for (const auto& folder : context.on_main([&] { return context.player.library.folders(); }))
        context.out << folder.path << '\n';
}

const command_file library_commands(10, [](declared_command& program) {
    auto library = program.add("library", "Folders of the media library", library_examples);
    library.require_command();
    const auto folders = std::make_shared<paths>();
    auto add = library.add("add", "Add folders and scan them");
    add.add_option("FOLDER", folders.get()).required();
    add.run([folders](run_context& context) { in_turn(context, [&] { add_folders(context, *folders); }); });
    auto remove = library.add("remove", "Forget folders; files and statistics stay");
    remove.add_option("FOLDER", folders.get()).required();
    remove.run([folders](run_context& context) { in_turn(context, [&] { remove_folders(context, *folders); }); });
    auto scan = library.add("rescan", "Look for new, changed and removed files");
    scan.add_option("FOLDER", folders.get(), "Only the library folder at or around this path");
    scan.run([folders](run_context& context) { in_turn(context, [&] { rescan(context, *folders); }); });
    auto leave_out = library.add("ignore", "Leave files or folders out, or list those that are");
    leave_out.add_option("PATH", folders.get(), "A file or folder inside the library");
    const auto undo = std::make_shared<bool>(false);
    leave_out.add_flag("--undo", *undo, "Include them again at the next rescan").needs("PATH");
    leave_out.run([folders, undo](run_context& context) {
        if (folders->empty()) print_ignored(context);
        else in_turn(context, [&] { ignore(context, normal(*folders), *undo); });
    });
    library.add("folders", "List the folders").run(print_folders);
});

}  // namespace
}  // namespace ostrevan::terminal
