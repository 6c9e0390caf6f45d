#pragma once

#include <string>

#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Prints one line per track. Throws `titleformat::script_error` when the script has a mistake.
void print_lines(const run_context& context, const metadb_handle_list& tracks, const std::string& format);

}  // namespace ostrevan::terminal
