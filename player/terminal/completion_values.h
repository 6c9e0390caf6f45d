#pragma once

#include <string>

#include "player/terminal/command.h"
#include "player/terminal/completion.h"

namespace ostrevan::terminal {

/// Whether the value wanted is one that only the player knows.
bool has_values(const completion& wanted);

/// For the shells: a line each with a word, a tab and its meaning. A word that is only a colon stands for the names of
/// files, one of two colons for those of folders.
std::string completion_text(const completion& wanted);

/// The same with what the player knows.
void print_completion(run_context& context, completion wanted);

}  // namespace ostrevan::terminal
