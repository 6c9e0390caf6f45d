#pragma once

#include <string>
#include <vector>

#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// The entries of a playlist; throws when there is none of that name.
std::vector<playable_location> entries_of(run_context& context, const std::string& name);

}  // namespace ostrevan::terminal
