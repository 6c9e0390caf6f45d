#pragma once

#include <ostream>

#include "player/app/watching.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Options of a command that watches. `needed` is a flag without which they make no sense, or null.
void declare_watch_options(declared_command& command, app::watch_options& options, const char* needed = nullptr);
/// With the folder of music as an absolute path, seen from the current folder of the calling thread. Throws
/// `system::user_error` when it is no folder.
app::watch_options with_whole_paths(app::watch_options options);

/// Prints what became known of another player: plays to the output, the rest as notes.
void print_report(run_context& context, const app::watch_report& report);
/// As an object in one line.
void print_report_as_json(std::ostream& out, const app::watch_report& report);

}  // namespace ostrevan::terminal
