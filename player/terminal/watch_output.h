#pragma once

#include <ostream>

#include "player/app/watching.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Prints what became known of another player: plays to the output, the rest as notes.
void print_report(run_context& context, const app::watch_report& report);
/// As an object in one line.
void print_report_as_json(std::ostream& out, const app::watch_report& report);

}  // namespace ostrevan::terminal
