#pragma once

#include <cstddef>
#include <vector>

#include "player/app/retags.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Tells the user which tracks get the tags of others, and what becomes of their statistics. Returns how many of them share
/// their new tags with another track of the library, and not only with a record whose track is gone.
std::size_t note_retags(run_context& context, const std::vector<app::retag>& retags);

}  // namespace ostrevan::terminal
